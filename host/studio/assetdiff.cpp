#include "assetdiff.h"

#include "fieldeditors.h"

#include <QCryptographicHash>
#include <QLocale>

#include <map>

namespace hbrc::studio {

namespace {

using Kind = FieldDifference::Kind;
using Value = FieldDifference::Value;

Kind kindOf(bool before, bool after)
{
    return !before ? Kind::Added : !after ? Kind::Removed : Kind::Changed;
}

Value valueOf(const QString& field, const QString& sample)
{
    switch (KindOfField(field, sample)) {
    case FieldKind::Colour: return Value::Colour;
    case FieldKind::Number: return Value::Number;
    default: return Value::Text;
    }
}

// Walks two maps in key order and reports each key whose value differs or that only one has.
template <typename Map, typename Report>
void compareMaps(const Map& before, const Map& after, Report report)
{
    auto b = before.begin();
    auto a = after.begin();
    while (b != before.end() || a != after.end()) {
        if (a == after.end() || (b != before.end() && b->first < a->first)) {
            report(b->first, &b->second, nullptr);
            ++b;
        } else if (b == before.end() || a->first < b->first) {
            report(a->first, nullptr, &a->second);
            ++a;
        } else {
            if (!(b->second == a->second))
                report(a->first, &b->second, &a->second);
            ++b;
            ++a;
        }
    }
}

}  // namespace

ExternalFileState ExternalFileState::of(std::string name, const QByteArray& content)
{
    return {std::move(name), true, content.size(), QCryptographicHash::hash(content, QCryptographicHash::Sha256)};
}

QString AssetDiff::describe(const ExternalFileState& file)
{
    if (!file.present)
        return tr("(missing)");
    return tr("%1 bytes, SHA-256 %2")
        .arg(QLocale().toString(file.size), QString::fromLatin1(file.sha256.toHex().left(12)));
}

QString AssetDiff::kindName(FieldDifference::Kind kind)
{
    switch (kind) {
    case Kind::Changed: return tr("changed");
    case Kind::Added: return tr("added");
    case Kind::Removed: return tr("removed");
    case Kind::Unchanged: return tr("unchanged");
    }
    return {};
}

std::vector<FieldDifference> AssetDiff::compare(const AssetVersion& before, const AssetVersion& after)
{
    std::vector<FieldDifference> rows;
    auto text = [](const std::string* value) { return value ? QString::fromStdString(*value) : QString(); };
    auto add = [&](const QString& field, const std::string* was, const std::string* is) {
        const QString beforeText = text(was);
        const QString afterText = text(is);
        rows.push_back({field, beforeText, afterText, kindOf(was, is),
                        valueOf(field, afterText.isEmpty() ? beforeText : afterText)});
    };
    const host::AssetRecord& was = before.record;
    const host::AssetRecord& is = after.record;
    const std::string kindBefore = before.exists ? host::AssetKindName(was.kind) : std::string();
    const std::string kindAfter = after.exists ? host::AssetKindName(is.kind) : std::string();
    const std::pair<QString, std::pair<const std::string*, const std::string*>> heading[] = {
        {tr("name"), {&was.name, &is.name}},
        {tr("type"), {&was.type, &is.type}},
        {tr("kind"), {&kindBefore, &kindAfter}},
    };
    for (const auto& [field, values] : heading) {
        const std::string* old = before.exists ? values.first : nullptr;
        const std::string* now = after.exists ? values.second : nullptr;
        if ((old && now && *old != *now) || (!old) != (!now))
            add(field, old, now);
    }
    compareMaps(was.fields, is.fields, [&](const std::string& field, const std::string* old, const std::string* now) {
        add(QString::fromStdString(field), old, now);
    });

    std::map<std::string, std::string> partsBefore, partsAfter;
    for (const host::PartRecord& part : was.parts)
        partsBefore[part.id] = part.name + " (" + part.type + ")";
    for (const host::PartRecord& part : is.parts)
        partsAfter[part.id] = part.name + " (" + part.type + ")";
    compareMaps(partsBefore, partsAfter, [&](const std::string&, const std::string* old, const std::string* now) {
        add(tr("part"), old, now);
    });

    // Every external file gets a row, so that "unchanged" is said as well as "changed".
    std::map<std::string, ExternalFileState> filesBefore;
    for (const ExternalFileState& file : before.externalFiles)
        filesBefore.emplace(file.name, file);
    auto fileRow = [&](const ExternalFileState* old, const ExternalFileState* now) {
        FieldDifference row{QString::fromStdString(now ? now->name : old->name), old ? describe(*old) : QString(),
                            now ? describe(*now) : QString(), kindOf(old, now), Value::ExternalFile};
        if (old && now && old->present == now->present && old->size == now->size && old->sha256 == now->sha256)
            row.kind = Kind::Unchanged;
        rows.push_back(std::move(row));
    };
    for (const ExternalFileState& file : after.externalFiles) {
        const auto found = filesBefore.find(file.name);
        fileRow(found == filesBefore.end() ? nullptr : &found->second, &file);
        if (found != filesBefore.end())
            filesBefore.erase(found);
    }
    for (const ExternalFileState& file : before.externalFiles)
        if (filesBefore.count(file.name))
            fileRow(&file, nullptr);
    return rows;
}

}  // namespace hbrc::studio
