#include <maya/MStatus.h>

#include <cstdio>
#include <ostream>

#include <maya/MString.h>

namespace {

const char* text(MStatus::MStatusCode code)
{
    switch (code) {
    case MStatus::kSuccess: return "(kSuccess): Success";
    case MStatus::kFailure: return "(kFailure): Unexpected Internal Failure";
    case MStatus::kInsufficientMemory: return "(kInsufficientMemory): Insufficient memory";
    case MStatus::kInvalidParameter: return "(kInvalidParameter): Object is incompatible with this method";
    case MStatus::kLicenseFailure: return "(kLicenseFailure): Application is not licensed for the attempted operation";
    case MStatus::kUnknownParameter: return "(kUnknownParameter): The parameter is not known";
    case MStatus::kNotImplemented: return "(kNotImplemented): The operation is not supported";
    case MStatus::kNotFound: return "(kNotFound): The item was not found";
    case MStatus::kEndOfFile: return "(kEndOfFile): End of file";
    }
    return "(unknown status)";
}

}  // namespace

MString MStatus::errorString() const { return text(code_); }

void MStatus::perror(const char* message) const
{
    std::fprintf(stderr, "%s: %s\n", message ? message : "", text(code_));
}

void MStatus::perror(const MString& message) const { perror(message.asChar()); }

std::ostream& operator<<(std::ostream& os, const MStatus& status) { return os << text(status.statusCode()); }

void mirk::reportStatus(const MStatus& status, const char* file, int line)
{
    std::fprintf(stderr, "API error detected in %s at line %d: %s\n", file, line, text(status.statusCode()));
}
