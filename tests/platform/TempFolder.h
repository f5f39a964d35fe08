// A folder of its own for a test, gone with all that lies in it when the test ends.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

class TempFolder {
public:
    TempFolder() : m_path((std::filesystem::temp_directory_path() / "mailengine-XXXXXX").string()) {
        if (mkdtemp(m_path.data()) == nullptr) std::abort();
    }
    ~TempFolder() { std::filesystem::remove_all(m_path); }
    TempFolder(const TempFolder&) = delete;

    std::string operator/(const std::string& name) const { return m_path + "/" + name; }

    static std::string Read(const std::string& path) {
        std::ifstream in(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    static void Write(const std::string& path, const std::string& bytes) { std::ofstream(path) << bytes; }

private:
    std::string m_path;
};
