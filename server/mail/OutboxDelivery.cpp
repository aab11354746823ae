#include "server/mail/OutboxDelivery.h"

#include "server/auth/Tokens.h"
#include "server/mail/MailMessage.h"
#include "server/storage/NewFile.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace clockwell::server {

namespace {

constexpr mode_t ownerOnlyFolder = 0700;

/// "20261121T081500.123Z"
std::string compactTime(Instant instant)
{
    std::string text = toIsoText(instant);
    std::erase_if(text, [](char c) { return c == '-' || c == ':'; });
    return text;
}

} // namespace

OutboxDelivery::OutboxDelivery(std::filesystem::path folder, std::string from, Clock clock)
    : m_folder(std::move(folder)), m_from(std::move(from)), m_clock(std::move(clock))
{
    struct stat facts
    {};
    const bool made = ::mkdir(m_folder.c_str(), ownerOnlyFolder) == 0;
    const int failure = made ? 0 : errno;
    if (!made && (failure != EEXIST || ::stat(m_folder.c_str(), &facts) != 0 || !S_ISDIR(facts.st_mode)))
        throw std::runtime_error{"The outbox folder " + m_folder.string() +
                                 " cannot be made: " + std::generic_category().message(failure) + "."};
    if (!made && (facts.st_mode & 0077U) != 0)
        throw std::runtime_error{
            "The outbox folder " + m_folder.string() +
            " can be read by others than its owner; e-mails hold codes. Try: chmod 700 " + m_folder.string()};
}

void OutboxDelivery::deliver(const Mail &mail, const std::atomic<bool> & /*giveUp*/)
{
    const std::lock_guard lock{m_lock};
    m_last = std::max(m_clock(), m_last + std::chrono::milliseconds{1});
    const std::string id = newId();
    ::mkdir(m_folder.c_str(), ownerOnlyFolder); // it may have been cleared away; a failure shows when writing
    const auto place = m_folder / (compactTime(m_last) + '-' + id + ".eml");
    try {
        NewFile file{place, NewFile::IfThere::Replace}; // nobody has this name
        file.write(messageText(mail, m_from, m_last, id));
        file.publish();
    } catch (const std::runtime_error &error) {
        throw DeliveryError{DeliveryError::Kind::Down, error.what()};
    }
}

void OutboxDelivery::check(const std::atomic<bool> & /*giveUp*/)
{
    ::mkdir(m_folder.c_str(), ownerOnlyFolder);
    try {
        const NewFile probe{m_folder / newId(), NewFile::IfThere::Refuse};
    } catch (const std::runtime_error &error) {
        throw DeliveryError{DeliveryError::Kind::Down, error.what()};
    }
}

} // namespace clockwell::server
