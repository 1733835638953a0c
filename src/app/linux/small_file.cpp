#include "app/linux/small_file.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <cstddef>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orbinex {

namespace {

constexpr std::size_t largest = 65536;  // bytes

}  // namespace

std::optional<std::string> readSmallFile(const std::string& path) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) return std::nullopt;
    std::optional<std::string> result;
    struct stat about {};
    if (::fstat(fd, &about) == 0 && S_ISREG(about.st_mode)) {
        std::string bytes(largest + 1, '\0');
        std::size_t count = 0;
        ssize_t read = 0;
        while (count < bytes.size() && (read = ::read(fd, bytes.data() + count, bytes.size() - count)) > 0)
            count += static_cast<std::size_t>(read);
        bytes.resize(count);
        if (read >= 0 && count <= largest) result = std::move(bytes);
    }
    ::close(fd);
    return result;
}

std::optional<std::string> writeSmallFile(const std::string& path, std::string_view bytes) {
    const QString name = QFile::decodeName(path.c_str());
    QDir().mkpath(QFileInfo(name).path());
    QSaveFile file(name);
    if (!file.open(QIODevice::WriteOnly)) return file.errorString().toStdString();
    file.write(bytes.data(), static_cast<qint64>(bytes.size()));
    if (!file.commit()) return file.errorString().toStdString();
    return std::nullopt;
}

}  // namespace orbinex
