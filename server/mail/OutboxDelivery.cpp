#include "server/mail/OutboxDelivery.h"

#include "server/auth/Tokens.h"
#include "server/mail/MailMessage.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace clockwell::server {

namespace {

constexpr mode_t ownerOnlyFolder = 0700;
constexpr mode_t ownerOnlyFile = 0600;

/// "20261121T081500.123Z"
std::string compactTime(Instant instant)
{
    std::string text = toIsoText(instant);
    std::erase_if(text, [](char c) { return c == '-' || c == ':'; });
    return text;
}

[[noreturn]] void fail()
{
    throw DeliveryError{DeliveryError::Kind::Down, std::generic_category().message(errno)};
}

class NewFile
{
public:
    explicit NewFile(const std::filesystem::path &path)
        : m_descriptor(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, ownerOnlyFile))
    {
        if (m_descriptor < 0)
            fail();
    }
    ~NewFile() { ::close(m_descriptor); }
    NewFile(const NewFile &) = delete;
    NewFile &operator=(const NewFile &) = delete;

    void write(const std::string &text) const
    {
        for (std::size_t done = 0; done < text.size();) {
            const auto count = ::write(m_descriptor, text.data() + done, text.size() - done);
            if (count <= 0)
                fail();
            done += static_cast<std::size_t>(count);
        }
    }

private:
    int m_descriptor;
};

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
    const auto unfinished = m_folder / (".new-" + id);
    try {
        NewFile{unfinished}.write(messageText(mail, m_from, m_last, id));
        if (::rename(unfinished.c_str(), (m_folder / (compactTime(m_last) + '-' + id + ".eml")).c_str()) != 0)
            fail();
    } catch (const DeliveryError &) {
        ::unlink(unfinished.c_str());
        throw;
    }
}

void OutboxDelivery::check(const std::atomic<bool> & /*giveUp*/)
{
    const auto probe = m_folder / (".new-" + newId());
    ::mkdir(m_folder.c_str(), ownerOnlyFolder);
    const NewFile file{probe};
    ::unlink(probe.c_str());
}

} // namespace clockwell::server
