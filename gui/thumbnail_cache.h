#pragma once
// Every picture of the open fullflash decoded once, off the window's thread, for the gallery's
// tiles. Two workers walk the list from the top; a tile that is painted before its turn asks
// for its picture and is taken next, so what is on screen fills in first. Results reach the
// window's thread in batches and stay until another fullflash (or another list) is opened.
// The workers hold their own reference to the fullflash's bytes, so closing or opening a file
// meanwhile cannot pull the bytes away under them.

#include <QImage>
#include <QObject>
#include <QThreadPool>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/file_io.h"
#include "base/result.h"
#include "codec/pixel_canvas.h"
#include "firmware/picture_record.h"

namespace korvatek::gui {

struct Thumbnail {
    enum class State : unsigned char { Waiting, Ready, Failed };
    State state = State::Waiting;
    QImage image;               // the picture at its own size; transparent pixels see-through
    int bits = 0;               // the depth it decoded with
    bool compressed = false;
    std::optional<Error> error; // why it cannot be shown (Failed)
    std::string fault;          // or what the decoder threw
    bool empty = false;         // or it decoded to no pixels at all (a width or height of 0)
};

// One picture as its tile shows it. Safe on any thread: it touches only its arguments.
Thumbnail decodeThumbnail(ByteView flash, const firmware::PictureRecord& record, codec::PixelCanvas& canvas);

class ThumbnailCache : public QObject {
    Q_OBJECT
public:
    explicit ThumbnailCache(QObject* parent = nullptr);
    ~ThumbnailCache() override;

    // Starts over on these pictures; the old results and work are dropped. No fullflash, or
    // no records, leaves the cache empty.
    void reset(std::shared_ptr<const app::ReadOnlyFile> flash, std::vector<firmware::PictureRecord> records);
    // Whether `flash` and `records` are what the cache was last started on.
    bool holds(const app::ReadOnlyFile* flash, const std::vector<firmware::PictureRecord>& records) const;

    // The row's thumbnail as far as it has come; a waiting row is moved to the front.
    const Thumbnail& at(int row);
    int rows() const { return static_cast<int>(m_thumbnails.size()); }
    int readyCount() const { return m_arrived; }
    bool complete() const { return m_arrived == rows(); }

signals:
    // Thumbnails of rows first..last arrived (some rows between may still be waiting).
    void arrived(int first, int last);
    void finished();

private:
    struct Batch;
    void collect(const std::shared_ptr<Batch>& batch);

    QThreadPool m_pool;
    std::shared_ptr<Batch> m_batch;
    const app::ReadOnlyFile* m_flash = nullptr;
    std::vector<firmware::PictureRecord> m_records;
    std::vector<Thumbnail> m_thumbnails;
    int m_arrived = 0;
};

}  // namespace korvatek::gui
