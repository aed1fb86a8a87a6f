// The path helpers on any pair of names: no crash, and the answers that must hold for any input.
#include <qtextention/pathutils.h>

#include <QDir>
#include <QString>

#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // Two NUL-free names: the base and the path, split at the first NUL byte.
    const std::string input(reinterpret_cast<const char*>(data), size);
    const std::size_t split = input.find('\0');
    const std::string base = input.substr(0, split);
    std::string path = split == std::string::npos ? std::string() : input.substr(split + 1);
    path = path.substr(0, path.find('\0'));

    const QString clean = CleanPath(path.c_str());
    if (CleanPath(QFile::encodeName(clean).constData()) != clean)
        std::abort();  // cleaning is idempotent
    const QString absolute = MakePathAbsolute("/fuzz/base", path.c_str());
    if (!absolute.startsWith(QLatin1Char('/')))
        std::abort();  // a path made absolute on an absolute base is absolute
    if (!IsSubDirectory(QString::fromStdString(base), QString::fromStdString(base)))
        std::abort();  // every folder contains itself
    MakePathRelative(base.c_str(), path.c_str());
    MakePath(base.c_str(), path.c_str(), nullptr, base.c_str());
    IsDirectoryPathValid(QString::fromStdString(path));
    IsFilePathValid(QString::fromStdString(path));
    return 0;
}
