#include "platform/files/destination_directories.h"

#include <cerrno>

#include "platform/files/case_insensitive_lookup.h"

namespace platform {

Result<std::optional<HostName>> DestinationDirectory::Existing(const FileTree& tree,
                                                               std::u16string_view device,
                                                               const HostName& host) const {
    if (!names.MayHold(device)) {
        return std::optional<HostName>();
    }
    const Result<EntryFacts> facts = tree.FactsOf(opened, host.c_str());
    if (facts) {
        return std::optional(host);
    }
    return facts.error().error == ENOENT ? FindHostName(tree, opened, device)
                                         : tl::unexpected<Failure>(facts.error());
}

namespace {

Status ReadNamesInto(NameHashSet& names, DirectoryListing& listing) {
    return ReadEntries(listing,
                       [&names](const DirectoryReader::Entry& entry) {
                           names.Add(DeviceNameOf(entry.name).view());
                           return true;
                       })
        .map([](bool /*all*/) {});
}

}  // namespace

Result<DestinationDirectory*> DestinationDirectories::Get(const PathResolver& tree,
                                                          std::u16string_view path) {
    // Whatever is not on the way to this directory is finished.
    while (!filled_.empty() && !path.starts_with(filled_.back().path)) {
        filled_.pop_back();
    }
    if (!filled_.empty() && filled_.back().path == path) {
        return &filled_.back();
    }
    Result<OpenedDirectory> opened = tree.OpenDirectory(path, OpenFor::Reading);
    if (!opened) {
        return tl::unexpected<Failure>(opened.error());
    }
    DestinationDirectory directory{std::u16string(path), std::move(*opened), {}};
    if (const Status read = ReadNamesInto(directory.names, *tree.tree().List(directory.opened));
        !read) {
        return tl::unexpected<Failure>(read.error());
    }
    filled_.push_back(std::move(directory));
    return &filled_.back();
}

}  // namespace platform
