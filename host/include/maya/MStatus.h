#pragma once
#include <iosfwd>

#include <maya/MTypes.h>

class MString;

/// The outcome of a call.
class MStatus
{
public:
    enum MStatusCode {
        kSuccess = 0,
        kFailure,
        kInsufficientMemory,
        kInvalidParameter,
        kLicenseFailure,
        kUnknownParameter,
        kNotImplemented,
        kNotFound,
        kEndOfFile
    };

    MStatus() = default;
    MStatus(MStatusCode code) : code_(code) {}
    MStatus(bool success) : code_(success ? kSuccess : kFailure) {}

    bool operator==(const MStatus& other) const { return code_ == other.code_; }
    bool operator==(MStatusCode code) const { return code_ == code; }
    bool operator!=(const MStatus& other) const { return code_ != other.code_; }
    bool operator!=(MStatusCode code) const { return code_ != code; }
    bool operator!() const { return code_ != kSuccess; }
    operator bool() const { return code_ == kSuccess; }

    bool        error() const { return code_ != kSuccess; }
    void        clear() { code_ = kSuccess; }
    MStatusCode statusCode() const { return code_; }

    /// The code's name and meaning, as "(kFailure): ...".
    MString errorString() const;
    /// Writes the message and errorString() to standard error.
    void perror(const char* message) const;
    void perror(const MString& message) const;

private:
    MStatusCode code_ = kSuccess;
};

inline bool operator==(MStatus::MStatusCode code, const MStatus& status) { return status == code; }
inline bool operator!=(MStatus::MStatusCode code, const MStatus& status) { return status != code; }

std::ostream& operator<<(std::ostream& os, const MStatus& status);

typedef MStatus MS;

namespace mirk {
/// What the checking macros print: file, line and the error.
void reportStatus(const MStatus& status, const char* file, int line);
}

#define CHECK_MSTATUS(_status)                                       \
    {                                                                \
        MStatus _maya_status = (_status);                            \
        if (MStatus::kSuccess != _maya_status)                       \
            mirk::reportStatus(_maya_status, __FILE__, __LINE__);    \
    }

#define CHECK_MSTATUS_AND_RETURN(_status, _retVal)                   \
    {                                                                \
        MStatus _maya_status = (_status);                            \
        if (MStatus::kSuccess != _maya_status) {                     \
            mirk::reportStatus(_maya_status, __FILE__, __LINE__);    \
            return (_retVal);                                        \
        }                                                            \
    }

#define CHECK_MSTATUS_AND_RETURN_IT(_status) CHECK_MSTATUS_AND_RETURN((_status), (_maya_status))

#define McheckErr(_status, _message)                                 \
    {                                                                \
        if (MStatus::kSuccess != (_status)) {                        \
            (_status).perror(_message);                              \
            return (_status);                                        \
        }                                                            \
    }
