// What a QFileListWidget costs next to the cheapest view of the same rows: a plain QTreeView over
// a QStandardItemModel holding the same paths (and an unchecked box in the second column), with
// no file-system questions. Both are built from the same sorted list of real files in a tree of
// nested folders, shown, painted and destroyed, for 1,000 and 10,000 files in one run; the
// summary prints the ratio per size.
#include <qtextention/qfilelistwidget.h>

#include <QStandardItemModel>
#include <QTemporaryDir>
#include <QTreeView>

#include <ratioreporter.h>
#include <realistictree.h>

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace {

constexpr QSize kViewSize(800, 600);
constexpr int kMostFiles = 10000;

// The real files, made once for the whole run.
const QStringList& benchFiles()
{
    static QTemporaryDir dir;
    static const QStringList files = hbrc::bench::makeRealisticTree(dir.path(), kMostFiles);
    return files;
}

// Shows the view, paints it once and keeps the picture from being optimised away.
void showAndPaint(QAbstractItemView& view)
{
    view.resize(kViewSize);
    view.show();
    benchmark::DoNotOptimize(view.grab());
}

template <class Body>
void runWithFiles(benchmark::State& state, Body body)
{
    if (benchFiles().size() != kMostFiles) {
        state.SkipWithError("could not create the benchmark files");
        return;
    }
    const QStringList files = benchFiles().mid(0, int(state.range(0)));
    for (auto _ : state)
        body(files);
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_FileListWidget(benchmark::State& state)
{
    runWithFiles(state, [](const QStringList& files) {
        QFileListWidget list(files);
        showAndPaint(list);
    });
}

void BM_PlainTreeView(benchmark::State& state)
{
    runWithFiles(state, [](const QStringList& files) {
        QStandardItemModel model(0, 3);
        model.setHorizontalHeaderLabels({QStringLiteral("File"), QStringLiteral("Read Only"), QString()});
        for (const QString& path : files) {
            auto* box = new QStandardItem;
            box->setCheckState(Qt::Unchecked);
            model.appendRow({new QStandardItem(path), box});
        }
        QTreeView view;
        view.setModel(&model);
        showAndPaint(view);
    });
}

// Medians of three repetitions, so that a busy moment on a shared machine does not decide a ratio.
void sizes(benchmark::internal::Benchmark* benchmark)
{
    benchmark->Arg(1000)->Arg(kMostFiles)->Repetitions(3)->ReportAggregatesOnly(true)->Unit(benchmark::kMillisecond);
}

BENCHMARK(BM_FileListWidget)->Apply(sizes);
BENCHMARK(BM_PlainTreeView)->Apply(sizes);

}  // namespace

int main(int argc, char** argv)
{
    std::vector<RatioReporter::Ratio> ratios;
    for (const char* rows : {"1000", "10000"}) {
        ratios.push_back({std::string("QFileListWidget / plain QTreeView, ") + rows + " files",
                          std::string("BM_FileListWidget/") + rows + "/repeats:3",
                          std::string("BM_PlainTreeView/") + rows + "/repeats:3"});
    }
    // CPU time: the work is single-threaded and stays comparable on a shared machine.
    RatioReporter reporter(ratios, RatioReporter::Clock::Cpu);
    return RunWidgetBenchmarks(argc, argv, reporter);
}
