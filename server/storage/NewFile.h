#pragma once

#include <string>
#include <string_view>

namespace clockwell::server {

/// A file that appears whole or not at all. It is written under another name beside its place, readable by
/// its owner only, and renamed once it is on the disk; a process that is killed leaves at most that other
/// file. What fails is a std::runtime_error with a text for people.
class NewFile
{
public:
    enum class IfThere { Refuse, Replace };

    /// Makes the unfinished file. Throws when something is in the place already that may
    /// not be replaced: with Replace only regular files may.
    NewFile(std::string place, IfThere ifThere);
    /// Removes the unfinished file, if it was not published.
    ~NewFile();
    NewFile(const NewFile &) = delete;
    NewFile &operator=(const NewFile &) = delete;

    const std::string &unfinished() const { return m_unfinished; }
    void write(std::string_view bytes);
    /// Flushes everything to the disk and puts the file in its place. With Refuse, also a file that came
    /// there meanwhile is not replaced.
    void publish();

private:
    void moveIntoPlace();

    std::string m_place;
    IfThere m_ifThere;
    std::string m_unfinished;
    int m_descriptor = -1;
};

} // namespace clockwell::server
