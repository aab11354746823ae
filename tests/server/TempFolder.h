#pragma once

#include <filesystem>
#include <string>

namespace clockwell::server::test {

/// A folder of its own, gone with the object.
class TempFolder
{
public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder &) = delete;
    TempFolder &operator=(const TempFolder &) = delete;

    std::string file(const std::string &name) const { return (m_path / name).string(); }

private:
    std::filesystem::path m_path;
};

/// The whole content of a file; empty when it is not there.
std::string readFile(const std::string &file);

} // namespace clockwell::server::test
