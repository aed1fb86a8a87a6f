// What the pixmap cache buys the dark styles, and what QtlomDarkStyleTarn costs over plain Fusion:
//  - the check-box indicator painted 10,000 times from a warm cache and painted directly (the
//    pixmap cache switched off, so the style paints onto the device with no pixmap between);
//  - a 10,000-row tree view (checkable items, branches) painted page by page in each style.
// Both ratios are printed at the end, measured side by side in this one run.
#include <qtextention/qtlomdarkstyletarn.h>

#include <QApplication>
#include <QHeaderView>
#include <QImage>
#include <QPainter>
#include <QPixmapCache>
#include <QScrollBar>
#include <QStandardItemModel>
#include <QStyleFactory>
#include <QStyleOption>
#include <QTreeView>

#include <ratioreporter.h>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <memory>
#include <string>

namespace {

constexpr int kPaints = 10000;
constexpr int kTopLevelRows = 1000;
constexpr int kChildrenPerRow = 9;  // 1,000 parents + 9,000 children = 10,000 rows

void paintCheckBoxes(benchmark::State& state, bool cached)
{
    const int limit = QPixmapCache::cacheLimit();
    if (!cached)
        QPixmapCache::setCacheLimit(0);
    QtlomDarkStyleTarn style;
    QImage image(16, 16, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    QStyleOptionButton button;
    button.rect = QRect(0, 0, 13, 13);
    button.palette = style.standardPalette();
    button.state = QStyle::State_Enabled | QStyle::State_On;
    QPixmapCache::clear();
    style.drawPrimitive(QStyle::PE_IndicatorCheckBox, &button, &painter);  // warm
    for (auto _ : state) {
        for (int i = 0; i < kPaints; ++i)
            style.drawPrimitive(QStyle::PE_IndicatorCheckBox, &button, &painter);
    }
    QPixmapCache::setCacheLimit(limit);
    state.counters["paints"] = benchmark::Counter(double(kPaints) * double(state.iterations()));
}

void BM_CheckBoxWarmCache(benchmark::State& state)
{
    paintCheckBoxes(state, true);
}

void BM_CheckBoxDirect(benchmark::State& state)
{
    paintCheckBoxes(state, false);
}

std::unique_ptr<QStandardItemModel> treeModel()
{
    auto model = std::make_unique<QStandardItemModel>();
    model->setHorizontalHeaderLabels({QStringLiteral("Asset"), QStringLiteral("Status")});
    for (int row = 0; row < kTopLevelRows; ++row) {
        auto* parent = new QStandardItem(QStringLiteral("folder %1").arg(row));
        parent->setCheckable(true);
        for (int child = 0; child < kChildrenPerRow; ++child) {
            auto* item = new QStandardItem(QStringLiteral("asset %1.%2.kel").arg(row).arg(child));
            item->setCheckable(true);
            item->setCheckState(child % 2 ? Qt::Checked : Qt::Unchecked);
            parent->appendRow({item, new QStandardItem(QStringLiteral("up to date"))});
        }
        model->appendRow({parent, new QStandardItem});
    }
    return model;
}

// Installs style for the whole application (the view, its header and viewport) with the dark
// palette, so that both runs differ in the style alone.
void paintTreePages(benchmark::State& state, QStyle* style)
{
    const QPalette palette = QtlomDarkStyleTarn().standardPalette();
    QApplication::setStyle(style);
    QApplication::setPalette(palette);
    QPixmapCache::clear();
    const auto model = treeModel();
    QTreeView view;
    view.setModel(model.get());
    view.expandAll();
    view.resize(400, 600);
    view.show();
    QApplication::processEvents();
    QImage page(view.size(), QImage::Format_ARGB32_Premultiplied);
    QScrollBar* bar = view.verticalScrollBar();
    int pages = 0;
    for (auto _ : state) {
        pages = 0;
        for (int value = 0;; value += bar->pageStep()) {
            bar->setValue(value);
            view.render(&page);
            ++pages;
            if (value >= bar->maximum())
                break;
        }
    }
    state.counters["pages"] = pages;
    state.counters["rows"] = model->rowCount() * (1 + kChildrenPerRow);
}

void BM_TreePagesTarn(benchmark::State& state)
{
    paintTreePages(state, new QtlomDarkStyleTarn);
}

void BM_TreePagesFusion(benchmark::State& state)
{
    paintTreePages(state, QStyleFactory::create(QStringLiteral("Fusion")));
}

BENCHMARK(BM_CheckBoxWarmCache)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CheckBoxDirect)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TreePagesTarn)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TreePagesFusion)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv)
{
    // CPU time: the painting is single-threaded and stays comparable on a shared machine.
    RatioReporter reporter({{"check box, painted directly / from the warm cache", "BM_CheckBoxDirect",
                             "BM_CheckBoxWarmCache"},
                            {"10,000-row tree page by page, QtlomDarkStyleTarn / Fusion", "BM_TreePagesTarn",
                             "BM_TreePagesFusion"}},
                           RatioReporter::Clock::Cpu);
    return RunWidgetBenchmarks(argc, argv, reporter);
}
