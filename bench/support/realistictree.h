#pragma once

// A tree of files as a content project holds them, for benchmarks that need real files: nested
// five folders deep (about ten files per leaf folder), 1 to 64 KiB each with most files small
// (about 16 KiB on average), every fifth file binary, the rest text. The same count gives the
// same tree, so runs compare.

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QString>
#include <QStringList>

#include <cstdint>

namespace hbrc::bench {

// The size and kind of the n-th file: a cheap hash spreads them over the tree.
inline std::uint32_t treeHash(std::uint32_t n)
{
    n ^= n >> 16;
    n *= 0x45d9f3bu;
    n ^= n >> 16;
    return n;
}

inline QByteArray treeFileContent(int n)
{
    const std::uint32_t u = treeHash(std::uint32_t(n)) % 64;
    const int size = 1024 + int(u * u * u / 4);  // 1 KiB to just under 64 KiB, mostly small
    QByteArray content;
    content.reserve(size);
    if (n % 5 == 4) {
        std::uint32_t state = std::uint32_t(n) + 1;
        while (content.size() < size) {
            state = state * 1664525u + 1013904223u;
            content.append(char(state >> 24));
        }
    } else {
        const QByteArray line = "field_" + QByteArray::number(n) + " = value of a text asset line\n";
        while (content.size() < size)
            content.append(line);
        content.truncate(size);
    }
    return content;
}

// The n-th file's path relative to the tree: five folder levels of four, then the file.
inline QString treeRelativePath(int n)
{
    constexpr int kFilesPerLeaf = 10;
    int leaf = n / kFilesPerLeaf;
    QString path;
    for (int level = 0; level < 5; ++level) {
        path += QStringLiteral("l%1_%2/").arg(level).arg(leaf % 4);
        leaf /= 4;
    }
    return path + (n % 5 == 4 ? QStringLiteral("mesh_%1.bin") : QStringLiteral("asset_%1.kel")).arg(n);
}

// Writes count files under root (made if missing; best an absolute path) and returns their absolute paths, sorted.
// Empty when a file could not be written.
inline QStringList makeRealisticTree(const QString& root, int count)
{
    const QDir top(root);
    QStringList paths;
    paths.reserve(count);
    for (int n = 0; n < count; ++n) {
        const QString path = top.absoluteFilePath(treeRelativePath(n));
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(treeFileContent(n)) < 0)
            return {};
        paths.append(path);
    }
    paths.sort();
    return paths;
}

}  // namespace hbrc::bench
