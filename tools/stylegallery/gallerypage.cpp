#include "gallerypage.h"

#include "stateswatches.h"
#include "studiowidgets.h"

#include <qtextention/qfilelistdialog.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDockWidget>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>
#include <QTabWidget>
#include <QTextEdit>
#include <QToolButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

QGroupBox* group(const QString& title, QLayout* layout)
{
    auto* box = new QGroupBox(title);
    box->setLayout(layout);
    return box;
}

QWidget* buttons()
{
    auto* row = new QHBoxLayout;
    auto* ok = new QPushButton(QStringLiteral("OK"));
    ok->setDefault(true);
    auto* apply = new QPushButton(QStringLiteral("Apply"));
    apply->setEnabled(false);
    row->addWidget(ok);
    row->addWidget(new QPushButton(QStringLiteral("Cancel")));
    row->addWidget(apply);
    row->addStretch();
    return group(QStringLiteral("Push buttons"), row);
}

QToolButton* toolButton(const QString& text, bool checked, bool enabled)
{
    auto* button = new QToolButton;
    button->setText(text);
    button->setCheckable(true);
    button->setChecked(checked);
    button->setEnabled(enabled);
    return button;
}

QWidget* toolButtons()
{
    auto* row = new QHBoxLayout;
    row->addWidget(toolButton(QStringLiteral("Move"), false, true));
    row->addWidget(toolButton(QStringLiteral("Rotate"), true, true));
    row->addWidget(toolButton(QStringLiteral("Scale"), true, false));
    row->addWidget(toolButton(QStringLiteral("Snap"), false, false));
    row->addStretch();
    return group(QStringLiteral("Tool buttons: plain, checked, checked disabled, disabled"), row);
}

QWidget* checkBoxes()
{
    auto* column = new QVBoxLayout;
    auto* off = new QCheckBox(QStringLiteral("Show grid"));
    auto* on = new QCheckBox(QStringLiteral("Snap to grid"));
    on->setChecked(true);
    auto* partial = new QCheckBox(QStringLiteral("Some layers visible"));
    partial->setTristate(true);
    partial->setCheckState(Qt::PartiallyChecked);
    auto* disabled = new QCheckBox(QStringLiteral("Locked (disabled)"));
    disabled->setChecked(true);
    disabled->setEnabled(false);
    for (QCheckBox* box : {off, on, partial, disabled})
        column->addWidget(box);
    column->addWidget(new CheckBoxStateGrid);
    return group(QStringLiteral("Check boxes"), column);
}

QWidget* editors()
{
    auto* form = new QFormLayout;
    auto* edit = new QLineEdit(QStringLiteral("//depot/assets/ship.kel"));
    auto* combo = new QComboBox;
    combo->addItems({QStringLiteral("Default changelist"), QStringLiteral("1203 Ship textures")});
    auto* spin = new QSpinBox;
    spin->setValue(42);
    auto* slider = new QSlider(Qt::Horizontal);
    slider->setValue(60);
    form->addRow(QStringLiteral("Line edit"), edit);
    form->addRow(QStringLiteral("Combo box"), combo);
    form->addRow(QStringLiteral("Spin box"), spin);
    form->addRow(QStringLiteral("Slider"), slider);
    return group(QStringLiteral("Editors"), form);
}

QWidget* menuBars()
{
    const QStringList items = {QStringLiteral("File"), QStringLiteral("Edit"), QStringLiteral("View"),
                               QStringLiteral("Help")};
    auto* column = new QVBoxLayout;
    column->addWidget(new QLabel(QStringLiteral("Plain menu bar (Edit selected, View pressed)")));
    column->addWidget(new MenuBarPreview(items, false));
    column->addWidget(new QLabel(QStringLiteral("Marked main menu bar (Edit selected, View pressed)")));
    column->addWidget(new MenuBarPreview(items, true));
    return group(QStringLiteral("Menu bars"), column);
}

QTreeWidget* assetTree()
{
    auto* tree = new QTreeWidget;
    tree->setHeaderLabels({QStringLiteral("Asset"), QStringLiteral("Status")});
    const struct {
        const char* folder;
        QStringList assets;
    } folders[] = {
        {"vehicles", {"truck.kel", "ship.kel", "bike.kel"}},
        {"props", {"crate.kel", "barrel.kel"}},
        {"lights", {"sun.kel"}},
    };
    for (const auto& folder : folders) {
        auto* parent = new QTreeWidgetItem(tree, {QString::fromLatin1(folder.folder)});
        parent->setCheckState(0, Qt::PartiallyChecked);
        for (int i = 0; i < folder.assets.size(); ++i) {
            auto* item = new QTreeWidgetItem(parent, {folder.assets.at(i), i == 0 ? QStringLiteral("checked out")
                                                                                   : QStringLiteral("up to date")});
            item->setCheckState(0, i == 0 ? Qt::Checked : Qt::Unchecked);
        }
    }
    tree->setSortingEnabled(true);
    tree->sortByColumn(0, Qt::AscendingOrder);
    tree->expandAll();
    tree->collapseItem(tree->topLevelItem(1));
    tree->header()->resizeSection(0, 170);
    tree->setCurrentItem(tree->topLevelItem(2)->child(0));
    return tree;
}

QWidget* tabs()
{
    auto* tabs = new QTabWidget;
    tabs->addTab(assetTree(), QStringLiteral("Assets"));
    tabs->addTab(new QTextEdit(QStringLiteral("Changelist description")), QStringLiteral("Description"));
    tabs->addTab(new QWidget, QStringLiteral("History"));
    return tabs;
}

QWidget* dockedWindow()
{
    auto* window = new QMainWindow;
    window->setWindowFlags(Qt::Widget);
    window->setCentralWidget(new QTextEdit(QStringLiteral("Viewport")));
    auto* dock = new QDockWidget(QStringLiteral("Properties"));
    auto* form = new QFormLayout;
    form->addRow(QStringLiteral("Name"), new QLineEdit(QStringLiteral("ship")));
    form->addRow(QStringLiteral("Scale"), new QSpinBox);
    auto* contents = new QWidget;
    contents->setLayout(form);
    dock->setWidget(contents);
    window->addDockWidget(Qt::LeftDockWidgetArea, dock);
    window->setMinimumHeight(150);
    return window;
}

// The dialog as it appears when the host lists an asset's files, embedded in the page.
QWidget* fileListDialog(const QStringList& files)
{
    auto* dialog = new QFileListDialog(files);
    dialog->setWindowFlags(Qt::Widget);
    dialog->setMinimumHeight(170);
    auto* column = new QVBoxLayout;
    column->addWidget(dialog);
    return group(QStringLiteral("File list dialog"), column);
}

}  // namespace

GalleryPage::GalleryPage(const QString& styleName, const QStringList& files, QWidget* parent)
    : QWidget(parent)
{
    auto* title = new QLabel(styleName);
    QFont titleFont = title->font();
    titleFont.setBold(true);
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.3);
    title->setFont(titleFont);

    auto* left = new QVBoxLayout;
    left->addWidget(buttons());
    left->addWidget(toolButtons());
    left->addWidget(checkBoxes());
    left->addWidget(studioWidgets());
    left->addStretch();

    auto* right = new QVBoxLayout;
    right->addWidget(menuBars());
    right->addWidget(editors());
    right->addWidget(tabs(), 1);
    right->addWidget(dockedWindow(), 1);

    auto* columns = new QHBoxLayout;
    columns->addLayout(left);
    columns->addLayout(right, 1);

    auto* page = new QVBoxLayout(this);
    page->addWidget(title);
    page->addLayout(columns);
    page->addWidget(fileListDialog(files));
    setAutoFillBackground(true);
}
