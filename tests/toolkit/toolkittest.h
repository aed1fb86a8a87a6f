#pragma once

// What the toolkit tests share: readable Qt text in failures, table rows with a name, Qt's warnings
// recorded, a tree's check box where a user clicks it, and the two dark styles with painting into an
// image of a known background so that a test can read back exactly what a style drew.

#include <qtextention/qtlomdarkstylesimple.h>
#include <qtextention/qtlomdarkstyletarn.h>

#include <QtTest>
#include <QtWidgets>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <ostream>
#include <sstream>
#include <tuple>
#include <vector>

inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}

// One case of a table: the answer of the code under test beside the expected one.
template <typename T>
struct Row {
    const char* name;
    T actual;
    T expected;
};

template <typename T, size_t N>
void expectRows(const Row<T> (&rows)[N])
{
    for (const Row<T>& row : rows)
        EXPECT_EQ(row.actual, row.expected) << row.name;
}

// Qt's warnings and worse while it lives (those containing filter when one is given).
class QtWarnings
{
public:
    explicit QtWarnings(QString filter = {}) : m_filter(std::move(filter)), m_previous(install(this)) {}
    ~QtWarnings() { qInstallMessageHandler(m_previous); }
    QStringList texts;

private:
    static QtMessageHandler install(QtWarnings* recorder)
    {
        static QtWarnings* current = nullptr;
        current = recorder;
        return qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
            if (type != QtDebugMsg && type != QtInfoMsg && text.contains(current->m_filter))
                current->texts << text;
        });
    }
    QString m_filter;
    QtMessageHandler m_previous;
};

// Where a tree draws an item's check box, so that tests can click it as a user would.
inline QRect checkIndicatorRect(QTreeWidget* tree, QTreeWidgetItem* item)
{
    QStyleOptionViewItem option;
    option.initFrom(tree->viewport());
    option.rect = tree->visualItemRect(item);
    option.features = QStyleOptionViewItem::HasCheckIndicator | QStyleOptionViewItem::HasDisplay;
    option.text = item->text(0);
    return tree->style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, tree);
}

// A dark style by name, with the QStyleFactory key of the Qt style it wraps.
struct StyleCase {
    const char* name;
    const char* baseKey;

    std::unique_ptr<QStyle> create() const
    {
        return qstrcmp(name, "Tarn") == 0 ? std::unique_ptr<QStyle>(new QtlomDarkStyleTarn)
                                          : std::unique_ptr<QStyle>(new QtlomDarkStyleSimple);
    }
    std::unique_ptr<QStyle> createBase() const { return std::unique_ptr<QStyle>(QStyleFactory::create(baseKey)); }
    friend std::ostream& operator<<(std::ostream& out, const StyleCase& style) { return out << style.name; }
};

inline const StyleCase kSimpleStyle{"Simple", "Windows"};
inline const StyleCase kTarnStyle{"Tarn", "Fusion"};

// Every test of this suite runs in both dark styles.
class DarkStyle : public ::testing::TestWithParam<StyleCase>
{
protected:
    const std::unique_ptr<QStyle> style = GetParam().create();
    const std::unique_ptr<QStyle> base = GetParam().createBase();
};

inline const QColor kSentinel(255, 0, 255);

// An image of size filled with background and then handed to paint.
inline QImage paintedImage(const QSize& size, const QColor& background, const std::function<void(QPainter&)>& paint)
{
    QImage image(size, QImage::Format_ARGB32);
    image.fill(background);
    QPainter painter(&image);
    paint(painter);
    return image;
}

// The same role in every group is the same grey.
inline QColor grey(int value)
{
    return QColor(value, value, value);
}
