// Messages: what commands, scripts and nodes tell the user. Results and printed text go to standard output, the rest
// in the host's form (`// Warning: ... //`) to standard error, and all of it to the sinks.
#pragma once
#include <functional>
#include <string>

namespace mirk::message {

enum Kind { kPrint, kPrintError, kResult, kEcho, kInfo, kWarning, kError };

/// Text as it is, no line end added: what `print` writes.
void print(const std::string& text);
void printError(const std::string& text);   ///< the same to standard error
void result(const std::string& text);    ///< "// Result: text //"
void echo(const std::string& text);      ///< a command as it runs
void info(const std::string& text);      ///< a line as it is
void warning(const std::string& text);
void error(const std::string& text);

/// Sees the text without the comment marks. Returns a number for `removeSink`.
using Sink = std::function<void(Kind, const std::string& text)>;
int  addSink(Sink sink);
void removeSink(int id);
/// Off: nothing is written to standard output and error; the sinks still get everything.
void setConsole(bool on);

/// The file that all messages are appended to while `write` is on.
struct History { std::string file; bool write = false; };
const History& history();
void setHistory(History h);
void clearHistory();                     ///< empties the file

}  // namespace mirk::message
