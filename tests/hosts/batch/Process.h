#pragma once

#include <string>
#include <vector>

#include <sys/types.h>

/// The program as a process of its own.

struct Outcome {
    int status = -1; ///< exit status; 128 + n where signal n ended it, as a shell tells it
    std::string output, errors;
};

/// A running `morvanex`. Its settings are the shipped ones, whatever the user has.
class Process {
public:
    /// `fileSizeLimit` (bytes): no file may grow beyond it, as on a full disk; negative: no limit.
    explicit Process(const std::vector<std::string> &words, long fileSizeLimit = -1);
    Process(const Process &) = delete;
    Process &operator=(const Process &) = delete;
    /// Ends it where it still runs.
    ~Process();

    /// Waits until it has written the text to standard output or standard error; false when it ended before.
    bool WaitFor(const std::string &text);
    void Send(int signal) const;
    /// Waits for its end.
    Outcome Finish();

private:
    /// Reads what there is, waiting for it; false at the end of both streams.
    bool Read();

    pid_t m_process = -1;
    int m_streams[2] = {-1, -1};
    Outcome m_outcome;
};

inline Outcome RunProgramProcess(const std::vector<std::string> &words, long fileSizeLimit = -1) {
    return Process(words, fileSizeLimit).Finish();
}
