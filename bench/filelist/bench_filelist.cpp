// How much filling a QFileListWidget costs next to the cheapest view of the same rows: a plain
// QTreeView over a minimal table model that already holds the paths and read-only flags. Both
// build the view and render its first screen, for 1,000 and 10,000 real files, in one run; the
// summary prints the ratio per size, also against a plain view that queries the file system.
#include <qtextention/qfilelistwidget.h>

#include <QAbstractTableModel>
#include <QApplication>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTreeView>

#include <ratioreporter.h>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace {

constexpr QSize kViewSize(800, 600);

// The real files, made once for the whole run.
const QStringList& benchFiles()
{
    static QTemporaryDir dir;
    static const QStringList files = [] {
        QStringList made;
        for (int i = 0; i < 10000; ++i) {
            const QString path = dir.filePath(QStringLiteral("asset_%1.kel").arg(i, 5, 10, QLatin1Char('0')));
            QFile file(path);
            if (file.open(QIODevice::WriteOnly))
                made << path;
        }
        return made;
    }();
    return files;
}

class MinimalFileModel : public QAbstractTableModel
{
public:
    MinimalFileModel(const QStringList& paths, std::vector<bool> readOnly)
        : m_paths(paths), m_readOnly(std::move(readOnly))
    {
    }
    int rowCount(const QModelIndex& parent) const override { return parent.isValid() ? 0 : int(m_paths.size()); }
    int columnCount(const QModelIndex& parent) const override { return parent.isValid() ? 0 : 3; }
    QVariant data(const QModelIndex& index, int role) const override
    {
        if (index.column() == 0 && role == Qt::DisplayRole)
            return m_paths.at(index.row());
        if (index.column() == 1 && role == Qt::CheckStateRole)
            return m_readOnly[size_t(index.row())] ? Qt::Checked : Qt::Unchecked;
        return {};
    }

private:
    QStringList m_paths;
    std::vector<bool> m_readOnly;
};

void BM_FileListWidget(benchmark::State& state)
{
    if (benchFiles().size() != 10000) {
        state.SkipWithError("could not create the benchmark files");
        return;
    }
    const QStringList files = benchFiles().mid(0, int(state.range(0)));
    for (auto _ : state) {
        QFileListWidget list(files);
        list.resize(kViewSize);
        benchmark::DoNotOptimize(list.grab());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

// The plain view, with or without asking the file system for each file's read-only state as
// the file list must (the second shows how much of the difference is file-system queries).
void plainTreeView(benchmark::State& state, bool queryFiles)
{
    if (benchFiles().size() != 10000) {
        state.SkipWithError("could not create the benchmark files");
        return;
    }
    const QStringList files = benchFiles().mid(0, int(state.range(0)));
    for (auto _ : state) {
        std::vector<bool> readOnly(size_t(files.size()), false);
        if (queryFiles) {
            for (qsizetype i = 0; i < files.size(); ++i)
                readOnly[size_t(i)] = !QFileInfo(files.at(i)).isWritable();
        }
        MinimalFileModel model(files, std::move(readOnly));
        QTreeView view;
        view.setModel(&model);
        view.resize(kViewSize);
        benchmark::DoNotOptimize(view.grab());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_PlainTreeView(benchmark::State& state)
{
    plainTreeView(state, false);
}

void BM_PlainTreeViewQueryingFiles(benchmark::State& state)
{
    plainTreeView(state, true);
}

BENCHMARK(BM_FileListWidget)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PlainTreeView)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PlainTreeViewQueryingFiles)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv)
{
    std::vector<RatioReporter::Ratio> ratios;
    for (const char* baseline : {"BM_PlainTreeView", "BM_PlainTreeViewQueryingFiles"}) {
        for (const char* rows : {"1000", "10000"}) {
            ratios.push_back({std::string("QFileListWidget / ") + baseline + ", " + rows + " files",
                              std::string("BM_FileListWidget/") + rows, std::string(baseline) + "/" + rows});
        }
    }
    RatioReporter reporter(ratios);
    return RunWidgetBenchmarks(argc, argv, reporter);
}
