#pragma once

#include <chrono>

/// How long a transfer may take. The limits of the processes stay above the tools' own ones where a
/// tool has any, so that the tool normally reports its time-out itself.
struct UploadLimits {
    std::chrono::milliseconds curlProcess = std::chrono::seconds(70);
    std::chrono::seconds curlTransfer{60};
    std::chrono::seconds curlConnect{30};

    std::chrono::milliseconds keysProcess = std::chrono::seconds(60);
    std::chrono::milliseconds passwordProcess = std::chrono::seconds(70);
    std::chrono::seconds passwordPrompt{60}; ///< Expect's wait for the next words of sftp.
    std::chrono::seconds sftpConnect{30};
};
