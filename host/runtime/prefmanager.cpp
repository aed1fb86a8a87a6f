#include <hbrchost/prefmanager.h>

#include <log/log.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>

namespace hbrc::host {

namespace {

void logStoreProblem(const QString& what, const QString& path)
{
    Log::Singleton::Instance().Write(Log::eWarning,
                                     (what + QStringLiteral(" (") + path + QStringLiteral(")")).toStdString());
}

}  // namespace

QString PrefManager::DefaultFilePath()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation) + QStringLiteral("/preferences.ini");
}

PrefManager::PrefManager(const QString& filePath)
    : m_filePath(filePath)
{
    QDir().mkpath(QFileInfo(m_filePath).absolutePath());
    m_settings = std::make_unique<QSettings>(m_filePath, QSettings::IniFormat);
    switch (m_settings->status()) {
    case QSettings::NoError:
        break;
    case QSettings::FormatError: {
        const QString aside = m_filePath + QStringLiteral(".corrupt");
        m_settings.reset();
        QFile::remove(aside);
        QFile::rename(m_filePath, aside);
        logStoreProblem(QStringLiteral("Preferences could not be parsed; using defaults, the old file is kept as ") + aside,
                        m_filePath);
        m_settings = std::make_unique<QSettings>(m_filePath, QSettings::IniFormat);
        break;
    }
    case QSettings::AccessError:
        m_storeUsable = false;
        logStoreProblem(QStringLiteral("Preferences cannot be read; using defaults for this session"), m_filePath);
        break;
    }
}

PrefManager::~PrefManager()
{
    Sync();
}

void PrefManager::Sync()
{
    if (!m_storeUsable || !m_settings)
        return;
    m_settings->sync();
    if (m_settings->status() == QSettings::AccessError) {
        m_storeUsable = false;
        logStoreProblem(QStringLiteral("Preferences cannot be written; changes are kept for this session only"),
                        m_filePath);
    }
}

bool PrefManager::Store(const std::string& key, const QVariant& value, int persistent)
{
    if (persistent && m_storeUsable) {
        m_sessionValues.erase(key);
        m_settings->setValue(QString::fromStdString(key), value);
        Sync();
        if (m_storeUsable)
            return true;
    }
    m_sessionValues[key] = value;
    return true;
}

QVariant PrefManager::Lookup(const std::string& key) const
{
    if (auto session = m_sessionValues.find(key); session != m_sessionValues.end())
        return session->second;
    if (m_storeUsable && m_settings->contains(QString::fromStdString(key)))
        return m_settings->value(QString::fromStdString(key));
    return {};
}

bool PrefManager::SetBoolPref(const std::string& key, bool value, int persistent)
{
    return Store(key, value, persistent);
}

bool PrefManager::SetStringPref(const std::string& key, const std::string& value, int persistent)
{
    return Store(key, QString::fromStdString(value), persistent);
}

bool PrefManager::SetIntPref(const std::string& key, int value, int persistent)
{
    return Store(key, value, persistent);
}

bool PrefManager::GetBoolPref(const std::string& key, bool defaultValue, bool& value, int)
{
    const QVariant stored = Lookup(key);
    if (!stored.isValid()) {
        value = defaultValue;
        return true;
    }
    const QString text = stored.toString().trimmed().toLower();
    if (text == QLatin1String("true") || text == QLatin1String("1"))
        value = true;
    else if (text == QLatin1String("false") || text == QLatin1String("0"))
        value = false;
    else
        return false;
    return true;
}

bool PrefManager::GetStringPref(const std::string& key, const char* defaultValue, std::string& value, int)
{
    const QVariant stored = Lookup(key);
    value = stored.isValid() ? stored.toString().toStdString() : std::string(defaultValue ? defaultValue : "");
    return true;
}

bool PrefManager::GetIntPref(const std::string& key, int defaultValue, int& value, int)
{
    const QVariant stored = Lookup(key);
    if (!stored.isValid()) {
        value = defaultValue;
        return true;
    }
    bool ok = false;
    const int number = stored.toString().trimmed().toInt(&ok);
    if (!ok)
        return false;
    value = number;
    return true;
}

}  // namespace hbrc::host
