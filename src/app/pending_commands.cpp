// The pending changes as a list one can take items back from: removal, undo and redo plan the
// picture patch again from where its free-space search began, with the same placement the
// menu commands use, so the patch saved afterwards is byte for byte the one a fresh session
// doing the remaining changes in order would save. The journal on disk follows every change.
#include <algorithm>
#include <fstream>

#include "app/workspace.h"
#include "base/hex_text.h"
#include "patch/vkp_text.h"

namespace korvatek::app {

using settings::MessageKey;

namespace {

template <typename T>
void insertAt(std::vector<T>& list, std::size_t index, const std::vector<T>& items) {
    list.insert(list.begin() + static_cast<std::ptrdiff_t>(std::min(index, list.size())), items.begin(), items.end());
}

template <typename T>
void eraseAt(std::vector<T>& list, std::size_t index, std::size_t count) {
    if (index >= list.size()) return;
    const std::size_t end = std::min(list.size(), index + count);
    list.erase(list.begin() + static_cast<std::ptrdiff_t>(index), list.begin() + static_cast<std::ptrdiff_t>(end));
}

}  // namespace

void Workspace::replanPictures() {
    std::uint32_t freeSpace = m_freeSpaceBase;
    std::string sections;
    for (auto it = m_pendingPictures.begin(); it != m_pendingPictures.end();) {
        const ByteView flash = it->flash ? it->flash->bytes() : ByteView{};
        const edit::PicturePlacement placed =
            edit::placePicture(flash, it->record, it->oldLength, *it->container, it->replacement, freeSpace);
        if (placed.error) {
            // Fewer pictures before it never leave less room; kept for safety all the same.
            it = m_pendingPictures.erase(it);
            continue;
        }
        if (placed.kind == edit::PicturePlacement::Kind::Moved) {
            freeSpace = placed.nextFreeSpace;
            UsedFreeSpace = true;
        }
        it->kind = placed.kind;
        it->address = placed.address;
        it->length = placed.length;
        sections += placed.section;
        ++it;
    }
    FreeSpaceStart = hexText(freeSpace);
    if (m_pendingPictures.empty()) return endPicturePatch();
    for (auto& row : ListView1) row.replaced = false;
    PatchInProgress = true;
    PicturePatchText = patch::pictureHeader(PhoneModel) + sections;
    (void)writeFile(collectingPatchPath(), PicturePatchText);
    for (const auto& picture : m_pendingPictures) {
        const auto n = static_cast<std::size_t>(picture.record.number);
        if (picture.flash == firmware && n < ListView1.size()) ListView1[n].replaced = true;
    }
}

void Workspace::markPendingGlyphs() {
    if (FtypeIndex != GlyphPatchFont) return;   // the rows shown belong to another font
    for (auto& row : ListView2) row.replaced = false;
    for (const auto& glyph : collectedGlyphs) {
        const auto n = static_cast<std::size_t>(glyph.number - 1);
        if (glyph.number > 0 && n < ListView2.size()) ListView2[n].replaced = true;
    }
}

void Workspace::rememberStep(PendingStep::Kind kind, std::size_t index, std::vector<PendingPicture> pictures,
                             std::vector<fonts::CollectedGlyph> glyphs) {
    PendingStep step;
    step.kind = kind;
    step.index = index;
    step.pictures = std::move(pictures);
    step.glyphs = std::move(glyphs);
    step.freeSpaceBase = m_freeSpaceBase;
    step.glyphFont = GlyphPatchFont;
    m_undo.push_back(std::move(step));
    m_redo.clear();
}

void Workspace::forgetSteps(bool pictures) {
    auto ofThatPatch = [pictures](const PendingStep& step) { return step.isPicture() == pictures; };
    std::erase_if(m_undo, ofThatPatch);
    std::erase_if(m_redo, ofThatPatch);
}

void Workspace::applyStep(const PendingStep& step, bool undo) {
    using Kind = PendingStep::Kind;
    const bool adds = (step.kind == Kind::AddPicture || step.kind == Kind::AddGlyph) != undo;
    if (step.isPicture()) {
        if (step.kind == Kind::DropPictures && !undo) {
            // Redoing a discard discards again, as the menu command does (the free space stays used).
            m_pendingPictures.clear();
            endPicturePatch();
            return;
        }
        if (m_pendingPictures.empty()) m_freeSpaceBase = step.freeSpaceBase;
        if (step.kind == Kind::DropPictures)
            m_pendingPictures = step.pictures;
        else if (adds)
            insertAt(m_pendingPictures, step.index, step.pictures);
        else
            eraseAt(m_pendingPictures, step.index, step.pictures.size());
        replanPictures();
        return;
    }
    if (collectedGlyphs.empty()) GlyphPatchFont = step.glyphFont;
    if (step.kind == Kind::DropGlyphs)
        collectedGlyphs = undo ? step.glyphs : std::vector<fonts::CollectedGlyph>{};
    else if (adds)
        insertAt(collectedGlyphs, step.index, step.glyphs);
    else
        eraseAt(collectedGlyphs, step.index, step.glyphs.size());
    GlyphPatchInProgress = !collectedGlyphs.empty();
    if (GlyphPatchInProgress) {
        mirrorGlyphFiles();
    } else {
        deleteFile(temporaryPath("/Korvatek.temp"));
        deleteFile(temporaryPath("/Korvatek_2.temp"));
    }
    markPendingGlyphs();
}

bool Workspace::removePendingPicture(int number) {
    const auto found = std::find_if(m_pendingPictures.begin(), m_pendingPictures.end(),
                                    [number](const PendingPicture& p) { return p.record.number == number; });
    if (found == m_pendingPictures.end()) return false;
    const auto index = static_cast<std::size_t>(found - m_pendingPictures.begin());
    rememberStep(PendingStep::Kind::RemovePicture, index, {*found}, {});
    applyStep(m_undo.back(), false);
    pendingChanged(true);
    return true;
}

bool Workspace::removePendingGlyph(int number) {
    const auto found = std::find_if(collectedGlyphs.begin(), collectedGlyphs.end(),
                                    [number](const fonts::CollectedGlyph& g) { return g.number == number; });
    if (found == collectedGlyphs.end()) return false;
    const auto index = static_cast<std::size_t>(found - collectedGlyphs.begin());
    rememberStep(PendingStep::Kind::RemoveGlyph, index, {}, {*found});
    applyStep(m_undo.back(), false);
    pendingChanged(true);
    return true;
}

bool Workspace::undoPending() {
    if (m_undo.empty()) return false;
    PendingStep step = std::move(m_undo.back());
    m_undo.pop_back();
    applyStep(step, true);
    m_redo.push_back(std::move(step));
    pendingChanged(true);
    return true;
}

bool Workspace::redoPending() {
    if (m_redo.empty()) return false;
    PendingStep step = std::move(m_redo.back());
    m_redo.pop_back();
    applyStep(step, false);
    m_undo.push_back(std::move(step));
    pendingChanged(true);
    return true;
}

FreeSpaceGauge Workspace::freeSpaceGauge() const {
    FreeSpaceGauge gauge;
    const auto next = static_cast<std::uint32_t>(valHEX(FreeSpaceStart));
    gauge.start = m_pendingPictures.empty() ? next : m_freeSpaceBase;
    for (const auto& picture : m_pendingPictures)
        if (picture.kind == edit::PicturePlacement::Kind::Moved) gauge.used += static_cast<std::uint64_t>(picture.length);
    if (firmware) gauge.left = erasedBytesFrom(firmware->bytes(), next);
    return gauge;
}

// ---- the journal

std::uint64_t Workspace::checksumOf(const std::shared_ptr<const ReadOnlyFile>& flash) {
    // Worked out once per opened file (a 64 MiB image takes tens of milliseconds). A weak
    // reference, so a later file at the same address is never taken for this one.
    if (m_checksummed.lock() != flash) {
        m_checksum = flashChecksum(flash->bytes());
        m_checksummed = flash;
    }
    return m_checksum;
}

void Workspace::pendingChanged(bool rewrite) {
    ++m_pendingGeneration;
    if (rewrite) rewriteJournal();
}

void Workspace::rewriteJournal() {
    if (journalPath.empty()) return;
    m_journalHasHead = false;
    if (m_pendingPictures.empty() && collectedGlyphs.empty()) {
        deleteFile(journalPath);
        return;
    }
    const std::shared_ptr<const ReadOnlyFile> flash = m_pendingPictures.empty() ? firmware : m_pendingPictures.front().flash;
    if (!flash) return;
    std::string text = journalHead(flash->path(), flash->size(), checksumOf(flash));
    for (const auto& picture : m_pendingPictures)
        if (picture.flash == flash) text += journalLine(m_freeSpaceBase, picture);
    for (const auto& glyph : collectedGlyphs) text += journalLine(GlyphPatchFont, glyph);
    // Written beside and renamed into place: a crash leaves the old journal or the new one.
    m_journalHasHead = static_cast<bool>(writeFile(journalPath, text));
}

void Workspace::journalAppend(const std::string& line) {
    if (journalPath.empty()) return;
    if (!m_journalHasHead) return rewriteJournal();   // the head and every change so far
    // Only the new line is added; a crash in the middle leaves a last line without its end,
    // which reading leaves out.
    std::ofstream out(toPath(journalPath), std::ios::binary | std::ios::app);
    out << line;
    out.flush();
    if (!out) m_journalHasHead = false;
}

std::optional<PendingJournal> Workspace::readPendingJournal() const {
    if (journalPath.empty() || CheckFexist(journalPath)) return std::nullopt;
    const auto text = readFile(journalPath, kMaxFlashFileSize * 4);
    if (!text) return std::nullopt;
    auto journal = readJournal(std::string_view(reinterpret_cast<const char*>(text->data()), text->size()));
    if (journal && journal->changeCount() == 0) return std::nullopt;
    return journal;
}

void Workspace::forgetPendingJournal() {
    if (!journalPath.empty()) deleteFile(journalPath);
    m_journalHasHead = false;
}

bool Workspace::restorePendingJournal(const PendingJournal& journal) {
    if (!firmware || !sameFile(firmware->path(), journal.flashPath)) openChosenFile(journal.flashPath);
    const bool same =
        firmware && firmware->size() == journal.flashSize && checksumOf(firmware) == journal.flashChecksum;
    if (!same) {
        showMessage(msg(MessageKey::MsgJournalFlashChanged) + journal.flashPath);
        return false;
    }
    m_pendingPictures.clear();
    for (const auto& picture : journal.pictures) {
        const auto n = static_cast<std::size_t>(picture.number);
        if (n >= ListView1.size()) continue;
        m_pendingPictures.push_back({firmware, ListView1[n], picture.oldLength,
                                     std::make_shared<const Bytes>(picture.container), picture.replacement,
                                     edit::PicturePlacement::Kind::InPlace, 0, 0});
    }
    m_freeSpaceBase = journal.freeSpaceBase;
    if (!m_pendingPictures.empty()) replanPictures();
    if (!journal.glyphs.empty()) {
        GlyphPatchFont = journal.glyphFont;
        collectedGlyphs = journal.glyphs;
        GlyphPatchInProgress = true;
        mirrorGlyphFiles();
        markPendingGlyphs();
    }
    m_undo.clear();
    m_redo.clear();
    pendingChanged(true);
    return true;
}

}  // namespace korvatek::app
