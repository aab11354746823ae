#include "server/storage/NewFile.h"

#include "server/storage/SqliteFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace clockwell::server {

namespace {

std::runtime_error failure(const std::string &place, int number)
{
    return std::runtime_error{"The file " + place +
                              " cannot be written: " + std::system_category().message(number) + "."};
}

std::runtime_error thereAlready(const std::string &place)
{
    return std::runtime_error{"There is a file " + place + " already; --force replaces it."};
}

void requireFree(const std::string &place, NewFile::IfThere ifThere)
{
    if (place.empty())
        throw std::runtime_error{"The file's name is empty."};
    std::error_code ignored;
    const auto status = std::filesystem::symlink_status(place, ignored);
    if (!std::filesystem::exists(status))
        return;
    if (!std::filesystem::is_regular_file(status))
        throw std::runtime_error{place + " is there already and is no regular file, so it is not replaced."};
    if (ifThere == NewFile::IfThere::Refuse)
        throw thereAlready(place);
}

void flush(int descriptor, const std::string &place)
{
    if (::fsync(descriptor) != 0)
        throw failure(place, errno);
}

/// Until its folder is flushed, a crash of the machine may undo a renaming.
void flushFolderOf(const std::string &place)
{
    const auto folder = std::filesystem::absolute(place).parent_path();
    const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return; // a folder that may be written but not read; the file itself is on the disk
    ::fsync(descriptor);
    ::close(descriptor);
}

} // namespace

NewFile::NewFile(std::string place, IfThere ifThere)
    : m_place(std::move(place)), m_ifThere(ifThere), m_unfinished(m_place + ".new-XXXXXX")
{
    requireFree(m_place, m_ifThere);
    m_descriptor = ::mkostemp(m_unfinished.data(), O_CLOEXEC); // with mode 0600
    if (m_descriptor < 0)
        throw failure(m_place, errno);
}

NewFile::~NewFile()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
    if (m_unfinished.empty())
        return;
    ::unlink(m_unfinished.c_str());
    for (const char *suffix : sqliteCompanions) // SQLite leaves them behind when it could not finish
        ::unlink((m_unfinished + suffix).c_str());
}

void NewFile::write(std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = ::write(m_descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            throw failure(m_place, errno);
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

void NewFile::publish()
{
    flush(m_descriptor, m_place);
    moveIntoPlace();
    m_unfinished.clear();
    flushFolderOf(m_place);
}

void NewFile::moveIntoPlace()
{
    if (m_ifThere == IfThere::Refuse) {
        // A second name for the file fails when the place is taken, however late somebody took it.
        if (::link(m_unfinished.c_str(), m_place.c_str()) == 0) {
            ::unlink(m_unfinished.c_str());
            return;
        }
        if (errno == EEXIST)
            throw thereAlready(m_place);
        requireFree(m_place, m_ifThere); // a file system without second names, such as FAT
    }
    if (std::rename(m_unfinished.c_str(), m_place.c_str()) != 0)
        throw failure(m_place, errno);
}

} // namespace clockwell::server
