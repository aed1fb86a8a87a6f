#pragma once

#include <qtextention/qtextentionglobal.h>

#include <QDialog>
#include <QStringList>

class QFileListWidget;

/// A modal window around a QFileListWidget with an "OK" button.
class QTEXTENTION_EXPORT QFileListDialog : public QDialog
{
    Q_OBJECT
public:
    explicit QFileListDialog(const QStringList& files, QWidget* parent = nullptr);

    void AddFiles(const QStringList& files);
    QFileListWidget* FileListWidget() const { return m_fileList; }

    /// Shows files under title and returns when the user closes the window (an empty list still
    /// shows it).
    static void ShowFiles(const QString& title, const QStringList& files);

private:
    QFileListWidget* m_fileList = nullptr;
};
