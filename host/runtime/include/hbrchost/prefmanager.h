#pragma once

#include <hbrchost/export.h>
#include <ihbprefmanager.h>
#include <nrk/ibase.h>

#include <QString>
#include <QVariant>

#include <map>
#include <memory>
#include <string>

class QSettings;

namespace hbrc::host {

// The host's preference manager ("PrefManager"), persisted as an INI file. By default the file is
// "preferences.ini" in the application's config location (QStandardPaths; a test run with
// QStandardPaths' test mode never touches the user's real one). A store that cannot be parsed is
// moved aside to "<file>.corrupt" and replaced by defaults; one that cannot be read or written
// keeps the values in memory for the session. Both cases write one log line.
class HBRC_HOSTRUNTIME_EXPORT PrefManager final : public IHBPrefManager, public nrk::IBase, public nrk::IDestroy
{
public:
    explicit PrefManager(const QString& filePath = DefaultFilePath());
    ~PrefManager() override;

    static QString DefaultFilePath();
    const char* GetClsName() const override { return "Korvex.NRK.PrefManager"; }
    QString FilePath() const { return m_filePath; }
    // Writes pending changes to disk (also done after every persistent write).
    void Sync();

    bool SetBoolPref(const std::string& key, bool value, int persistent) override;
    bool SetStringPref(const std::string& key, const std::string& value, int persistent) override;
    bool SetIntPref(const std::string& key, int value, int persistent) override;
    bool GetBoolPref(const std::string& key, bool defaultValue, bool& value, int flags) override;
    bool GetStringPref(const std::string& key, const char* defaultValue, std::string& value, int flags) override;
    bool GetIntPref(const std::string& key, int defaultValue, int& value, int flags) override;

private:
    bool Store(const std::string& key, const QVariant& value, int persistent);
    // The stored value, or an invalid QVariant when the key is absent.
    QVariant Lookup(const std::string& key) const;

    QString m_filePath;
    std::unique_ptr<QSettings> m_settings;
    std::map<std::string, QVariant> m_sessionValues;  // flag-0 writes and values a broken store could not keep
    bool m_storeUsable = true;
};

}  // namespace hbrc::host
