#pragma once

#include <atomic>
#include <iosfwd>
#include <string>
#include <vector>

namespace lumiran {
class PlatformDecoder;
}

namespace lumiran::cli {

// Exit codes of the command line tool.
constexpr int ExitOk = 0;
constexpr int ExitFailed = 1;        // the effect failed or a save was refused
constexpr int ExitUsage = 2;         // bad arguments or unreadable input
constexpr int ExitInterrupted = 130; // stopped by Ctrl+C, as the shell counts it

// Runs the tool on the arguments after the program name; pictures in the
// platform's formats are read through the decoder. A non-zero interrupted
// (set by the Ctrl+C handler) stops a load at its next step and the run
// with ExitInterrupted, writing nothing more. A batch shows a progress line
// a picture on err when showProgress (err is a terminal).
int runCli(const std::vector<std::string>& args, std::ostream& out, std::ostream& err,
           PlatformDecoder& decoder, const std::atomic<int>* interrupted = nullptr,
           bool showProgress = false);

} // namespace lumiran::cli
