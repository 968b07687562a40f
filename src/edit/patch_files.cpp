#include "edit/patch_files.h"

#include "base/file_io.h"
#include "base/hex_text.h"
#include "containers/gpf_header.h"
#include "edit/picture_files.h"
#include "firmware/layout.h"
#include "patch/lumbra_patch.h"

namespace korvatek::edit {

namespace {

template <class Reader>
Status feedFile(const std::string& path, Reader& reader) {
    return app::readFileChunks(path, app::kMaxPatchFileSize, 1 << 16, [&](ByteView piece) {
        reader.feed(std::string_view(reinterpret_cast<const char*>(piece.data()), piece.size()));
    });
}

void putLe(Bytes& out, std::uint32_t value, int bytes) {
    for (int i = 0; i < bytes; ++i) out.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

}  // namespace

Result<PatchCheck> checkPatchFile(ByteView image, const std::string& path) {
    // Read in pieces: the text is never held whole, only the edits it describes.
    patch::VkpReader reader;
    if (const Status read = feedFile(path, reader); !read) return read.error();
    PatchCheck check;
    check.parsed = reader.finish();
    check.mismatches = patch::checkAgainst(check.parsed.edits, image);
    return check;
}

Result<StatusReport> patchStatus(ByteView image, const std::vector<std::string>& paths) {
    StatusReport report;
    for (const std::string& path : paths) {
        auto check = checkPatchFile(image, path);
        if (!check) return check.error();
        patch::PatchStatus status = patch::statusOf(check->parsed.edits, image);
        report.patches.push_back({path, std::move(*check), std::move(status)});
    }
    std::vector<const std::vector<patch::PatchEdit>*> edits;
    for (const PatchReport& p : report.patches) edits.push_back(&p.check.parsed.edits);
    report.clashes = patch::clashesBetween(edits);
    return report;
}

bool StatusReport::consistent() const {
    for (const PatchReport& p : patches) {
        if (!p.readable() || !p.check.parsed.conflicts.empty()) return false;
        if (p.status.state != patch::PatchState::Applied && p.status.state != patch::PatchState::NotApplied) return false;
    }
    return clashes.empty();
}

Result<PatchText> readPatchText(const std::string& path) {
    PatchText read;
    patch::VkpReader reader;
    const Status status = app::readFileChunks(path, app::kMaxPatchFileSize, 1 << 16, [&](ByteView piece) {
        const std::string_view text(reinterpret_cast<const char*>(piece.data()), piece.size());
        read.text.append(text);
        reader.feed(text);
    });
    if (!status) return status.error();
    read.parsed = reader.finish();
    return read;
}

Result<std::vector<NamedContainer>> containersOfOtherPatch(const std::string& path) {
    patch::LumbraReader reader;
    if (const Status read = feedFile(path, reader); !read) return read.error();
    std::vector<NamedContainer> out;
    for (const auto& picture : reader.finish()) {
        Bytes file = containers::SaveGPFhead(true, picture.width, picture.height,
                                             std::string{static_cast<char>(picture.typeCode), '\0'});
        file.insert(file.end(), picture.data.begin(), picture.data.end());
        out.push_back({app::zeroPadded(picture.number, 4) + ".gpf2", std::move(file)});
    }
    return out;
}

Result<PictureArea> makePictureArea(const std::string& folder, int maxIndex,
                                    const std::function<void(const std::string& name)>& missing,
                                    const std::function<void(double)>& progress,
                                    const std::function<bool()>& stop) {
    PictureArea area;
    std::uint64_t offset = firmware::kPictureDataStart;
    const Bytes empty = emptyContainer();
    for (int n = 0; n <= maxIndex; ++n) {
        if (n > 0 && stop && stop()) {
            area.cancelled = true;
            return area;
        }
        const std::string name = app::zeroPadded(n, 4);
        std::string path = app::joinPath(folder, name + ".gpf2");
        if (app::CheckFexist(path)) path = app::joinPath(folder, name + ".gpf");
        Bytes file;
        if (app::CheckFexist(path)) {
            if (missing) missing(name);
            file = empty;
        } else {
            auto read = app::readFile(path, app::kMaxPictureFileSize);
            if (!read) return read.error();
            file = std::move(*read);
        }
        ByteReader in(file);
        const auto header = containers::LoadGPFhead(in);
        if (!header) return makeError(header.error().code, " " + path);
        // Everything after the 32-byte header: the data and their padding.
        const std::size_t length = file.size() > containers::kGpfHeaderSize ? file.size() - containers::kGpfHeaderSize : 0;
        area.data.insert(area.data.end(), file.end() - static_cast<std::ptrdiff_t>(length), file.end());

        putLe(area.table, static_cast<std::uint16_t>(header->width), 2);
        putLe(area.table, static_cast<std::uint16_t>(header->height), 2);
        area.table.push_back(static_cast<std::uint8_t>(containers::typeCodeOf(header->typeText)));
        area.table.push_back(header->typeText.size() > 1 ? static_cast<std::uint8_t>(header->typeText[1]) : 0);
        putLe(area.table, 0, 2);
        // 0xA1 above the low 24 bits: right for every offset of the picture area.
        putLe(area.table, 0xA1000000u | static_cast<std::uint32_t>(offset & 0xFFFFFF), 4);

        offset += length;
        if (offset > firmware::kPictureDataLimit) {
            area.overflow = true;
            return area;
        }
        if (progress) progress(maxIndex > 0 ? static_cast<double>(n) / maxIndex * 100.0 : 100.0);
    }
    return area;
}

}  // namespace korvatek::edit
