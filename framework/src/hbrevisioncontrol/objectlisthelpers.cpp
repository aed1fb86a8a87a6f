#include "objectlisthelpers.h"

#include <QFile>

#include <algorithm>
#include <cctype>
#include <filesystem>

namespace {

bool endsWithKelExtension(const std::string& name)
{
    static constexpr char kExtension[] = ".kel";
    constexpr std::size_t length = sizeof(kExtension) - 1;
    if (name.size() < length)
        return false;
    return std::equal(name.end() - length, name.end(), kExtension, [](char c, char e) {
        return std::tolower(static_cast<unsigned char>(c)) == e;
    });
}

}  // namespace

HBRC_INTERNAL_NAMESPACE_BEGIN

void GetAssetListPrettyNames(const KELPtr<kel4::IDataControl>& dataControl,
                             const kel4::IDataControl::ObjectList& objects, bool withExternalFiles, QString& text)
{
    for (const KELHandle<IDbObject>& object : objects) {
        const KELHandle<IAsset> asset = KELHandle<IAsset>::AssignCast(object);
        if (asset.IsNull())
            continue;
        kel4::IDataControl& control = dataControl.GetPointeeNotNull();
        text += QString::fromStdString(control.GetAssetDisplayName(asset));
        if (withExternalFiles) {
            text += QStringLiteral(" (with External: ");
            kel4::Set<std::string> files;
            // A failed query leaves the set empty, which the text shows as an open parenthesis.
            control.GetExternalFiles(object, kel4::closureId::Persistence, files);
            for (const std::string& file : files) {
                const std::string name = std::filesystem::path(file).filename().string();
                if (!endsWithKelExtension(name))
                    text += QFile::decodeName(QByteArray::fromStdString(name)) + QLatin1Char(')');
            }
        }
        text += QLatin1Char('\n');
    }
}

kel4::IDataControl::ObjectList WithRelatedObjects(kel4::IDataControl& dataControl,
                                                  const kel4::IDataControl::ObjectList& objects)
{
    kel4::IDataControl::ObjectList all = objects;
    kel4::IDataControl::ObjectSet related;
    dataControl.GetRelatedObjects(objects, related);
    all.insert(all.end(), related.begin(), related.end());
    return all;
}

bool DbObjectListsAreEqual(const kel4::IDataControl::ObjectList& a, const kel4::IDataControl::ObjectList& b)
{
    return a == b;
}

HBRC_INTERNAL_NAMESPACE_END
