#pragma once

#include <hbrcdatamodel/assetrecord.h>

#include <QByteArray>
#include <QCoreApplication>
#include <QString>

#include <string>
#include <vector>

namespace hbrc::studio {

// An external file of one version of an asset, as a difference needs it: whether it was there,
// its size and its SHA-256.
struct ExternalFileState
{
    std::string name;  // as the asset lists it, relative to the folder of its .kel file
    bool present = false;
    qint64 size = 0;
    QByteArray sha256;

    static ExternalFileState of(std::string name, const QByteArray& content);
    static ExternalFileState missing(std::string name) { return {std::move(name), false, 0, {}}; }
};

// One version of an asset: the record its .kel file holds and the state of each external file it
// lists. A version without a record (none) stands for "not there yet".
struct AssetVersion
{
    bool exists = false;
    host::AssetRecord record;
    std::vector<ExternalFileState> externalFiles;
};

// One row of a difference: a field (or the name, the type, a part, an external file) with its
// value before and after.
struct FieldDifference
{
    enum class Kind { Changed, Added, Removed, Unchanged };
    // How the values read: colours get swatches, numbers are aligned.
    enum class Value { Text, Number, Colour, ExternalFile };

    QString field;
    QString before;  // empty when added
    QString after;   // empty when removed
    Kind kind = Kind::Changed;
    Value value = Value::Text;
};

// The per-field difference of two versions of an asset: the name, type and kind where they
// differ, then the fields that differ in field order, the parts added, removed or renamed, and a
// row for every external file, changed or not, compared by size and checksum.
class AssetDiff
{
    Q_DECLARE_TR_FUNCTIONS(AssetDiff)
public:
    static std::vector<FieldDifference> compare(const AssetVersion& before, const AssetVersion& after);
    // What an external file is in a difference's cell: "1,024 bytes, SHA-256 3a7bd3e2360a".
    static QString describe(const ExternalFileState& file);
    static QString kindName(FieldDifference::Kind kind);
};

}  // namespace hbrc::studio
