#include "platform/files/destination_directories.h"

#include <cerrno>

#include "platform/files/case_insensitive_lookup.h"
#include "platform/io/directory_reader.h"
#include "platform/io/entry_facts.h"

namespace platform {

Result<std::optional<HostName>> DestinationDirectory::Existing(std::u16string_view device,
                                                               const HostName& host) const {
    if (!names.MayHold(device)) {
        return std::optional<HostName>();
    }
    const Result<EntryFacts> facts = FactsOf(descriptor.get(), host.c_str());
    if (facts) {
        return std::optional(host);
    }
    return facts.error().error == ENOENT ? FindHostName(descriptor.get(), device)
                                         : tl::unexpected<Failure>(facts.error());
}

namespace {

Status ReadNamesInto(NameHashSet& names, int directory) {
    return ReadEntries(directory, DirectoryReader::Names::Device,
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
    DestinationDirectory directory{std::u16string(path), std::move(opened->descriptor), {}};
    if (const Status read = ReadNamesInto(directory.names, directory.descriptor.get()); !read) {
        return tl::unexpected<Failure>(read.error());
    }
    filled_.push_back(std::move(directory));
    return &filled_.back();
}

}  // namespace platform
