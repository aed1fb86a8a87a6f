#pragma once

// The submitted assets of the scale benchmarks: a count of metadata assets named Asset0... in 100
// folders (level0...) of a workspace, and the Subversion seed that holds them submitted, kept in
// the temporary folder as hbrc-bench-scale-COUNT (see SvnSeed), so that bench_scale and
// bench_studio on svnserve build it once per count and share it. Header-only; the benchmark links
// the data model. Throws std::runtime_error when a step fails.

#include <svnseed.h>

#include <hbrcdatamodel/workspace.h>

#include <string>
#include <vector>

namespace hbrc::bench {

// Creates the assets in the workspace (not saved yet) and answers them in the order made.
inline std::vector<KELHandle<kel4::IAsset>> CreateAssets(host::Workspace& space, int count)
{
    std::vector<KELHandle<kel4::IAsset>> handles;
    std::string error;
    for (int i = 0; i < count; ++i) {
        host::NewAsset asset;
        asset.kind = host::AssetKind::Metadata;
        asset.name = "Asset" + std::to_string(i);
        asset.folder = "level" + std::to_string(i % 100);
        handles.push_back(space.CreateAsset(asset, error));
        if (handles.back().IsNull())
            throw std::runtime_error(error);
    }
    return handles;
}

// Saves the workspace; the files written.
inline std::vector<std::string> SaveAll(host::Workspace& space)
{
    const host::SaveReport saved = space.Save();
    if (!saved.Succeeded())
        throw std::runtime_error(saved.DescribeFailures());
    return saved.writtenFiles;
}

// The seed of count assets, built by this call when the temporary folder has none yet (about 11
// minutes for 100,000 on a 2-core machine).
inline SvnSeed ScaleSeed(int count)
{
    const auto write = [count](const QString& folder) {
        std::string error;
        const auto space = host::Workspace::Open(folder, error);
        if (!space)
            throw std::runtime_error(error);
        CreateAssets(*space, count);
        return SaveAll(*space);
    };
    return SvnSeed(QStringLiteral("hbrc-bench-scale-%1").arg(count), write);
}

}  // namespace hbrc::bench
