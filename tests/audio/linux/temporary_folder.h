#pragma once

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace orbinex::test {

/// A folder of its own, and files in it whose bytes tell where they are from. Its end removes it.
class TemporaryFolder {
  public:
    explicit TemporaryFolder(const std::filesystem::path& parent = std::filesystem::temp_directory_path()) {
        std::string path = (parent / "orbinex-media-XXXXXX").string();
        if (!::mkdtemp(path.data())) throw std::runtime_error("no folder for the test in " + parent.string());
        path_ = path;
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() { std::filesystem::remove_all(path_); }

    [[nodiscard]] std::string path(const std::string& name) const { return (path_ / name).string(); }
    /// Writes a file of this length and returns its path. Another seed gives other bytes.
    [[nodiscard]] std::string file(const std::string& name, std::size_t length, std::size_t seed = 0) const {
        std::vector<char> bytes(length);
        for (std::size_t i = 0; i < length; ++i) bytes[i] = static_cast<char>(byteAt(i, seed));
        std::ofstream out(path(name), std::ios::binary | std::ios::trunc);
        out.write(bytes.data(), static_cast<std::streamsize>(length));
        if (!out.flush()) throw std::runtime_error("cannot write " + path(name));
        return path(name);
    }
    static std::uint8_t byteAt(std::size_t offset, std::size_t seed = 0) {
        return static_cast<std::uint8_t>((offset * 31 + (offset >> 8) * 7 + (offset >> 16) * 13) ^ seed);
    }

  private:
    std::filesystem::path path_;
};

}  // namespace orbinex::test
