#pragma once

#include "server/mail/MailDelivery.h"
#include "server/storage/Instant.h"

#include <filesystem>
#include <mutex>
#include <string>

namespace clockwell::server {

/// Writes each message into a folder as an .eml file, whose name begins with the time and sorts by it. A file
/// is there as a whole or not at all. Folder and files can be read by their owner only: they hold codes.
class OutboxDelivery : public MailDelivery
{
public:
    /// Makes the folder. Throws std::runtime_error with a text for people when that fails.
    OutboxDelivery(std::filesystem::path folder, std::string from, Clock clock);

    /// What fails is the disk or the folder, so every failure is of the kind Down.
    void deliver(const Mail &mail, const std::atomic<bool> &giveUp) override;
    void check(const std::atomic<bool> &giveUp) override;

private:
    std::filesystem::path m_folder;
    std::string m_from;
    Clock m_clock;
    std::mutex m_lock; // held while writing
    Instant m_last;    // names are in the order of delivery also within one millisecond
};

} // namespace clockwell::server
