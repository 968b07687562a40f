#include "thumbnail_cache.h"

#include <QThread>

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <utility>

#include "edit/picture_decode.h"

namespace korvatek::gui {

Thumbnail decodeThumbnail(ByteView flash, const firmware::PictureRecord& record, codec::PixelCanvas& canvas) {
    Thumbnail thumbnail;
    thumbnail.state = Thumbnail::State::Failed;
    try {
        // Cells the decoder leaves alone show as see-through, not as the picture decoded before.
        const int coverW = std::clamp<int>(record.width, 0, canvas.columns());
        const int coverH = std::clamp<int>(record.height, 0, canvas.rows());
        for (int y = 0; y < coverH; ++y)
            for (int x = 0; x < coverW; ++x) canvas.at(x, y) = codec::TransparentPixel;
        const edit::DecodedPicture decoded = edit::decodeFlashPicture(flash, record, 24, 0, canvas);
        if (decoded.stopped) {
            thumbnail.error = decoded.stopped;
            return thumbnail;
        }
        if (decoded.refused) {
            thumbnail.error = decoded.refused;
            return thumbnail;
        }
        if (decoded.width <= 0 || decoded.height <= 0) {
            thumbnail.empty = true;
            return thumbnail;
        }
        if (decoded.width > canvas.columns() || decoded.height > canvas.rows()) {
            thumbnail.error = Error{ErrorCode::OutsideCanvas, {}, {}, {}};
            return thumbnail;
        }
        QImage image(decoded.width, decoded.height, QImage::Format_ARGB32);
        for (int y = 0; y < decoded.height; ++y) {
            auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
            for (int x = 0; x < decoded.width; ++x) {
                const codec::Cell& cell = canvas.at(x, y);  // blue, green, red, fourth byte
                line[x] = cell == codec::TransparentPixel ? 0u : qRgb(cell[2], cell[1], cell[0]);
            }
        }
        thumbnail.image = std::move(image);
        thumbnail.bits = decoded.bits;
        thumbnail.compressed = decoded.compression == "Yes";
        thumbnail.state = Thumbnail::State::Ready;
    } catch (const std::exception& e) {
        // A record the decoder cannot cope with costs its tile, never the window.
        thumbnail.fault = e.what();
    }
    return thumbnail;
}

// The work on one list: which rows are taken, the rows asked for first, and the results not
// yet collected by the window's thread.
struct ThumbnailCache::Batch {
    std::shared_ptr<const app::ReadOnlyFile> flash;
    std::vector<firmware::PictureRecord> records;
    std::atomic<bool> cancelled{false};
    std::mutex mutex;
    std::vector<char> taken;
    std::vector<int> wanted;    // last asked, first taken
    std::size_t sweep = 0;
    std::vector<std::pair<int, Thumbnail>> ready;

    std::optional<int> take() {
        std::lock_guard lock(mutex);
        while (!wanted.empty()) {
            const int row = wanted.back();
            wanted.pop_back();
            if (!taken[static_cast<std::size_t>(row)]) return mark(row);
        }
        while (sweep < taken.size() && taken[sweep]) ++sweep;
        if (sweep == taken.size()) return std::nullopt;
        return mark(static_cast<int>(sweep));
    }
    int mark(int row) {
        taken[static_cast<std::size_t>(row)] = 1;
        return row;
    }
};

ThumbnailCache::ThumbnailCache(QObject* parent) : QObject(parent) {
    m_pool.setMaxThreadCount(std::clamp(QThread::idealThreadCount(), 1, 2));
}

ThumbnailCache::~ThumbnailCache() {
    if (m_batch) m_batch->cancelled = true;
    m_pool.waitForDone();
}

void ThumbnailCache::reset(std::shared_ptr<const app::ReadOnlyFile> flash, std::vector<firmware::PictureRecord> records) {
    if (m_batch) m_batch->cancelled = true;   // its workers stop at their next picture
    m_batch.reset();
    m_flash = flash.get();
    m_records = records;
    m_thumbnails.assign(flash ? records.size() : 0, Thumbnail{});
    m_arrived = 0;
    if (m_thumbnails.empty()) return;

    auto batch = std::make_shared<Batch>();
    batch->flash = std::move(flash);
    batch->records = std::move(records);
    batch->taken.assign(batch->records.size(), 0);
    m_batch = batch;
    for (int worker = 0; worker < m_pool.maxThreadCount(); ++worker) {
        m_pool.start([this, batch] {
            codec::PixelCanvas canvas;
            while (!batch->cancelled) {
                const std::optional<int> row = batch->take();
                if (!row) return;
                Thumbnail thumbnail =
                    decodeThumbnail(batch->flash->bytes(), batch->records[static_cast<std::size_t>(*row)], canvas);
                bool first = false;
                {
                    std::lock_guard lock(batch->mutex);
                    first = batch->ready.empty();
                    batch->ready.emplace_back(*row, std::move(thumbnail));
                }
                // One call to the window's thread per batch of results, however many pile up
                // while it is busy. The cache waits for the workers before it goes, so `this`
                // outlives the call, and a call still queued then is dropped with the object.
                if (first) QMetaObject::invokeMethod(this, [this, batch] { collect(batch); }, Qt::QueuedConnection);
            }
        });
    }
}

bool ThumbnailCache::holds(const app::ReadOnlyFile* flash, const std::vector<firmware::PictureRecord>& records) const {
    const auto same = [](const firmware::PictureRecord& a, const firmware::PictureRecord& b) {
        return a.number == b.number && a.width == b.width && a.height == b.height && a.type == b.type &&
               a.dataAddress == b.dataAddress;
    };
    return flash == m_flash &&
           std::equal(records.begin(), records.end(), m_records.begin(), m_records.end(), same);
}

const Thumbnail& ThumbnailCache::at(int row) {
    const Thumbnail& thumbnail = m_thumbnails[static_cast<std::size_t>(row)];
    if (thumbnail.state == Thumbnail::State::Waiting && m_batch) {
        std::lock_guard lock(m_batch->mutex);
        m_batch->wanted.push_back(row);
    }
    return thumbnail;
}

void ThumbnailCache::collect(const std::shared_ptr<Batch>& batch) {
    if (batch != m_batch) return;   // a list since replaced
    std::vector<std::pair<int, Thumbnail>> ready;
    {
        std::lock_guard lock(batch->mutex);
        ready.swap(batch->ready);
    }
    if (ready.empty()) return;
    int first = rows();
    int last = -1;
    for (auto& [row, thumbnail] : ready) {
        m_thumbnails[static_cast<std::size_t>(row)] = std::move(thumbnail);
        first = std::min(first, row);
        last = std::max(last, row);
    }
    m_arrived += static_cast<int>(ready.size());
    emit arrived(first, last);
    if (complete()) {
        m_batch.reset();
        emit finished();
    }
}

}  // namespace korvatek::gui
