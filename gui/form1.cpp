#include "form1.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QListView>
#include <QSlider>
#include <QToolButton>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollBar>
#include <QSplitter>
#include <QStatusBar>
#include <QTabBar>
#include <QTreeView>
#include <QVBoxLayout>

#include <cmath>
#include <new>

#include "accessible_text.h"
#include "application.h"
#include "batch_cancel.h"
#include "canvas_image.h"
#include "command_line.h"
#include "gallery_pane.h"
#include "glyph_list_model.h"
#include "list_filter.h"
#include "text_preview.h"
#include "options_dialog.h"
#include "picture_list_model.h"
#include "preview_widget.h"
#include "qt_text.h"
#include "workspace_selection.h"

namespace korvatek::gui {

using settings::CaptionKey;

namespace {

QTreeView* makeList(const char* name, QAbstractItemModel* model, WorkspaceSelection* selection, QWidget* parent) {
    auto* list = new QTreeView(parent);
    list->setObjectName(QLatin1String(name));
    list->setModel(model);
    QItemSelectionModel* own = list->selectionModel();
    list->setSelectionModel(selection);
    delete own;
    list->setRootIsDecorated(false);
    list->setUniformRowHeights(true);
    list->setAllColumnsShowFocus(true);
    list->setAlternatingRowColors(true);
    list->setSelectionMode(QAbstractItemView::SingleSelection);
    list->setSelectionBehavior(QAbstractItemView::SelectRows);
    list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    list->setContextMenuPolicy(Qt::CustomContextMenu);
    list->header()->setSectionsMovable(false);
    list->header()->setResizeContentsPrecision(64);  // every row of a column has the same form
    list->header()->setStretchLastSection(true);
    return list;
}

}  // namespace

Form1::Form1(std::unique_ptr<settings::SettingsStore> settingsStore,
             std::unique_ptr<settings::AssociationStore> associations, QWidget* parent)
    : QMainWindow(parent),
      m_ui(this),
      m_ws(m_ui),
      m_settingsStore(std::move(settingsStore)),
      m_associations(std::move(associations)),
      m_popupPresenter([](QMenu& menu, const QPoint& at) { menu.exec(at); }) {
    setObjectName(QStringLiteral("Form1"));
    setWindowTitle(QString::fromLatin1(kApplicationName));
    buildWidgets();
    buildMenus();
    buildPendingPanel();
    m_ui.setProgressBar(m_progress);
    m_ui.setBatchCancel(m_batchCancel);
    m_ui.setMessages(m_ws.messages);
    installDropTargets();
    retranslate();
    showTab();
    resize(1080, 740);
}

Form1::~Form1() = default;

void Form1::buildWidgets() {
    m_pictureModel = new PictureListModel(m_ws.ListView1, this);
    m_glyphModel = new GlyphListModel(m_ws.ListView2, this);
    m_pictureModel->setAccessibleText([this](const RecordTableModel& rows, int row, int column) {
        return pictureAccessibleText(m_ws.messages, rows, row, column);
    });
    m_glyphModel->setAccessibleText([this](const RecordTableModel& rows, int row, int column) {
        return glyphAccessibleText(m_ws.messages, rows, row, column);
    });
    m_pictureSelection = new WorkspaceSelection(m_pictureModel, [this](int row) { pictureRowRequested(row); }, this);
    m_glyphSelection = new WorkspaceSelection(m_glyphModel, [this](int row) { glyphRowRequested(row); }, this);

    auto* listPane = new QWidget;
    m_tabStrip = new QTabBar(listPane);
    m_tabStrip->setObjectName(QStringLiteral("TabStrip1"));
    m_tabStrip->addTab(QString());
    m_tabStrip->addTab(QString());
    m_tabStrip->setExpanding(false);
    m_tabStrip->setDrawBase(false);
    m_fontSelector = new QComboBox(listPane);
    m_fontSelector->setObjectName(QStringLiteral("Ftype"));
    m_fontSelector->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    m_fontSelector->setMinimumContentsLength(10);
    m_pictureList = makeList("ListView1", m_pictureModel, m_pictureSelection, listPane);
    m_glyphList = makeList("ListView2", m_glyphModel, m_glyphSelection, listPane);
    m_pictureFilter = new ListFilter(m_pictureList, edit::QueryFor::Pictures, [this](int row, const edit::RecordQuery& query) {
        const auto& record = m_ws.ListView1[static_cast<std::size_t>(row)];
        return query.matches(record, !query.needsDecoding() || pictureDecodable(row));
    }, listPane);
    m_pictureFilter->box()->setObjectName(QStringLiteral("FindPictures"));
    m_glyphFilter = new ListFilter(m_glyphList, edit::QueryFor::Glyphs, [this](int row, const edit::RecordQuery& query) {
        return query.matches(m_ws.ListView2[static_cast<std::size_t>(row)]);
    }, listPane);
    m_glyphFilter->box()->setObjectName(QStringLiteral("FindGlyphs"));
    m_gallery = new GalleryPane(m_ws, m_pictureModel, [this](int row) { pictureRowRequested(row); }, listPane);
    m_pictureFilter->alsoFilter(m_gallery->view());
    auto* findRow = new QHBoxLayout;
    for (ListFilter* filter : {m_pictureFilter, m_glyphFilter}) {
        findRow->addWidget(filter->box(), 1);
        findRow->addWidget(filter->count());
    }
    findRow->addWidget(m_gallery->slider());
    findRow->addWidget(m_gallery->toggle());

    auto* listLayout = new QVBoxLayout(listPane);
    listLayout->setContentsMargins(6, 6, 0, 0);
    listLayout->setSpacing(4);
    listLayout->addWidget(m_tabStrip);
    listLayout->addWidget(m_fontSelector, 0, Qt::AlignLeft);
    listLayout->addLayout(findRow);
    listLayout->addWidget(m_pictureList);
    listLayout->addWidget(m_gallery->view());
    listLayout->addWidget(m_glyphList);

    auto* previewPane = new QWidget;
    m_preview = new PreviewWidget(previewPane);
    m_info = new QLabel(previewPane);
    m_info->setObjectName(QStringLiteral("PICinfo"));
    // Reachable from the keyboard too, to be read and copied.
    m_info->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_info->setFocusPolicy(Qt::StrongFocus);
    m_info->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_info->setMinimumHeight(m_info->fontMetrics().lineSpacing() * 6 + 8);
    m_info->setContentsMargins(4, 4, 4, 4);
    auto* previewLayout = new QVBoxLayout(previewPane);
    previewLayout->setContentsMargins(0, 6, 6, 0);
    previewLayout->setSpacing(6);
    previewLayout->addWidget(m_preview, 1);
    previewLayout->addWidget(m_info);
    m_textPreview = new TextPreview(m_ws, previewPane);   // on the Fonts tab, under the glyph
    previewLayout->addWidget(m_textPreview);

    m_splitter = new QSplitter(Qt::Horizontal, this);
    m_splitter->setObjectName(QStringLiteral("splitter"));
    m_splitter->addWidget(listPane);
    m_splitter->addWidget(previewPane);
    m_splitter->setStretchFactor(0, 0);
    m_splitter->setStretchFactor(1, 1);
    m_splitter->setChildrenCollapsible(false);
    m_splitter->setSizes({480, 600});
    setCentralWidget(m_splitter);

    m_progress = new QProgressBar(this);
    m_progress->setObjectName(QStringLiteral("ProgressBar1"));
    m_progress->setRange(0, 100);
    m_progress->setValue(0);
    m_progress->setTextVisible(false);
    m_progress->setFixedWidth(220);
    m_fileStatus = new QLabel(this);
    m_fileStatus->setObjectName(QStringLiteral("fileStatus"));
    statusBar()->addWidget(m_fileStatus, 1);
    statusBar()->addPermanentWidget(m_progress);
    m_cancelButton = new QPushButton(this);
    m_cancelButton->setObjectName(QStringLiteral("cmdCancelBatch"));
    statusBar()->addPermanentWidget(m_cancelButton);
    m_batchCancel = new BatchCancel(this, m_cancelButton);

    // Tab follows the eye: tabs, font, search box, list, then the information text.
    setTabOrder(m_tabStrip, m_fontSelector);
    setTabOrder(m_fontSelector, m_pictureFilter->box());
    setTabOrder(m_pictureFilter->box(), m_glyphFilter->box());
    setTabOrder(m_glyphFilter->box(), m_pictureList);
    setTabOrder(m_pictureList, m_glyphList);
    setTabOrder(m_glyphList, m_info);
    // The context menu key and Shift+F10 open a list's popup at its current row.
    for (QTreeView* list : {m_pictureList, m_glyphList}) list->installEventFilter(this);

    connect(m_tabStrip, &QTabBar::currentChanged, this, [this](int index) { TabStrip1_Click(index + 1); });
    connect(m_fontSelector, &QComboBox::activated, this,
            [this](int index) { runCommand([this, index] { m_ws.Ftype_Click(index); }); });
    connect(m_pictureList, &QWidget::customContextMenuRequested, this,
            [this](const QPoint& at) { showPopup(m_pictureList, m_picturePopup, at); });
    connect(m_glyphList, &QWidget::customContextMenuRequested, this,
            [this](const QPoint& at) { showPopup(m_glyphList, m_glyphPopup, at); });
    connect(m_gallery->view(), &QWidget::customContextMenuRequested, this,
            [this](const QPoint& at) { showPopup(m_gallery->view(), m_picturePopup, at); });
    connect(m_gallery, &GalleryPane::toggled, this, &Form1::showTab);
}

// ---- start-up and commands

void Form1::startUp(const QStringList& arguments) {
    m_ws.ProgramDir = programDirectory();
    const std::string commandLine = commandLineText(arguments);
    runCommand([&] { m_ws.startUp(commandLine, *m_settingsStore); });
    retranslate();
    offerJournalRestore();
}

void Form1::runCommand(const std::function<void()>& command) {
    if (m_running) return;
    m_running = true;
    try {
        command();
    } catch (const std::bad_alloc&) {
        // Memory ran out inside the command: it stops with a message and the window goes on.
        // Outputs are renamed into place only when whole, so nothing half-written is left.
        m_ws.ActionFailed = true;
        m_ws.showMessage(m_ws.msg(settings::MessageKey::MsgOutOfMemory));
    }
    m_batchCancel->end();
    m_running = false;
    refreshFromWorkspace();
}

void Form1::mnu_FileExit_Click() { close(); }

void Form1::mnu_Options_Click() { makeOptionsDialog()->exec(); }

std::unique_ptr<OptionsDialog> Form1::makeOptionsDialog() {
    auto dialog = std::make_unique<OptionsDialog>(m_ws, *m_settingsStore, *m_associations, executablePath(), this);
    connect(dialog.get(), &OptionsDialog::languageApplied, this, &Form1::retranslate);
    return dialog;
}

QString Form1::aboutText() const {
    const settings::MessageTable& table = m_ws.messages;
    QStringList lines;
    for (CaptionKey key : {CaptionKey::AboutAuthor, CaptionKey::AboutWeb, CaptionKey::AboutThanks,
                           CaptionKey::AboutNames, CaptionKey::AboutTesters})
        lines << toQString(table.caption(key));
    lines << toQString(table.text(settings::MessageKey::MsgCredits));
    // English has no translator line.
    if (const std::string& translator = table.text(settings::MessageKey::MsgTranslator); !translator.empty())
        lines << toQString(translator);
    return lines.join(QLatin1Char('\n'));
}

void Form1::mnu_About_Click() { m_ws.showMessage(toStdString(aboutText())); }

void Form1::TabStrip1_Click(int tab) {
    m_ws.TabStrip1_Click(tab);
    showTab();
}

void Form1::copyToClipboard(const std::optional<std::string>& text) {
    if (!text) return;
    QClipboard* clipboard = QGuiApplication::clipboard();
    clipboard->clear();
    clipboard->setText(toQString(*text));
}

// ---- lists

// A click or key in a list: the Workspace selects the row and shows it, once per change of row.
void Form1::pictureRowRequested(int row) {
    if (row == m_ws.ListView1Selected) return;
    runCommand([this, row] {
        m_ws.selectPicture(row);
        m_ws.ListView1_Click();
    });
}

void Form1::glyphRowRequested(int row) {
    if (row == m_ws.ListView2Selected) return;
    runCommand([this, row] {
        m_ws.selectGlyph(row);
        m_ws.ListView2_Click();
    });
}

void Form1::showPopup(QAbstractItemView* list, QMenu* popup, const QPoint& position) {
    // A list without rows has no popup.
    if (list->model()->rowCount() == 0) return;
    m_popupPresenter(*popup, list->viewport()->mapToGlobal(position));
}

// ---- showing the Workspace

void Form1::refreshFromWorkspace() {
    const bool picturesRead = m_pictureModel->update();
    const bool glyphsRead = m_glyphModel->update();
    if (picturesRead || glyphsRead) resizeListColumns();
    if (picturesRead) m_decodable.clear();
    // A new list, or marks that changed, under a search that is on.
    m_pictureFilter->apply();
    m_glyphFilter->apply();
    m_pictureSelection->show(m_ws.ListView1Selected);
    m_gallery->refresh();
    m_glyphSelection->show(m_ws.ListView2Selected);
    fillFontSelector();
    updateCommandStates();
    showPreview();
    m_textPreview->refresh();
    refreshPending();
    showTab();
    m_progress->setValue(static_cast<int>(std::lround(std::clamp(m_ws.progress, 0.0, 100.0))));
    m_fileStatus->setText(m_ws.firmware ? QStringLiteral("%1   %2   %3")
                                              .arg(toQString(m_ws.PhoneModel), toQString(m_ws.FirmwareId),
                                                   toQString(m_ws.FirmwarePath))
                                        : QString());
}

// The fonts of the open fullflash, refilled only when they changed, and the chosen one.
void Form1::fillFontSelector() {
    QStringList fonts;
    for (const firmware::FontSelectorEntry& entry : m_ws.Ftype) fonts << toQString(entry.caption);
    QStringList shown;
    for (int item = 0; item < m_fontSelector->count(); ++item) shown << m_fontSelector->itemText(item);
    if (shown != fonts) {
        m_fontSelector->clear();
        m_fontSelector->addItems(fonts);
    }
    if (m_fontSelector->currentIndex() != m_ws.FtypeIndex) m_fontSelector->setCurrentIndex(m_ws.FtypeIndex);
}

void Form1::showPreview() {
    const app::Preview& preview = m_ws.preview;
    switch (preview.source) {
        case app::Preview::Source::Picture:
            if (QImage replacement = shownReplacement(); !replacement.isNull())
                m_preview->setImage(std::move(replacement));
            else
                m_preview->setImage(canvasImage(m_ws.canvas, preview.width, preview.height));
            break;
        case app::Preview::Source::Glyph:
            m_preview->setImage(canvasImage(m_ws.glyphGrid, preview.width, preview.height));
            break;
        case app::Preview::Source::None:
            m_preview->setImage({});
            break;
    }
    m_info->setText(toDisplayText(m_ws.PICinfo));
    m_preview->setAccessibleDescription(previewDescription(m_ws));
}

void Form1::showTab() {
    const bool fonts = m_ws.TabStrip1 == 2;
    m_pictureList->setVisible(!fonts && !m_gallery->isOn());
    m_gallery->showOnTab(!fonts);
    m_glyphList->setVisible(fonts);
    m_pictureFilter->box()->setVisible(!fonts);
    m_pictureFilter->count()->setVisible(!fonts);
    m_glyphFilter->box()->setVisible(fonts);
    m_glyphFilter->count()->setVisible(fonts);
    m_textPreview->setVisible(fonts);
    m_fontSelector->setVisible(fonts);
    if (m_tabStrip->currentIndex() != m_ws.TabStrip1 - 1) {
        const QSignalBlocker quiet(m_tabStrip);
        m_tabStrip->setCurrentIndex(m_ws.TabStrip1 - 1);
    }
}

void Form1::resizeListColumns() {
    for (QTreeView* list : {m_pictureList, m_glyphList}) {
        const int columns = list->model()->columnCount();
        for (int column = 0; column + 1 < columns; ++column) {
            list->resizeColumnToContents(column);
            list->setColumnWidth(column, list->columnWidth(column) + 6);
        }
        // The mark column takes what is left, and shrinks to its caption when there is no room:
        // a stretched section never gets narrower than it was before it was stretched.
        QHeaderView* header = list->header();
        header->setStretchLastSection(false);
        header->resizeSection(columns - 1, header->minimumSectionSize());
        header->setStretchLastSection(true);
    }
    if (m_listPaneFitted || m_pictureModel->rowCount() == 0) return;
    // The first filled list sets the pane's width: every column in view, no sideways scrolling.
    int needed = 2 * m_pictureList->frameWidth() + m_pictureList->verticalScrollBar()->sizeHint().width() + 40;
    for (int column = 0; column + 1 < m_pictureModel->columnCount(); ++column)
        needed += m_pictureList->columnWidth(column);
    const QMargins margins = m_splitter->widget(0)->layout()->contentsMargins();
    needed += margins.left() + margins.right();
    const QList<int> sizes = m_splitter->sizes();
    const int total = sizes.value(0) + sizes.value(1);
    if (total > needed) m_splitter->setSizes({needed, total - needed});
    m_listPaneFitted = true;
}

bool Form1::pictureDecodable(int row) {
    // Worked out once per list, when a search asks: decoding every picture takes about 10 ms.
    if (m_decodable.size() != m_ws.ListView1.size()) {
        m_decodable.assign(m_ws.ListView1.size(), 0);
        codec::PixelCanvas scratch;
        for (std::size_t n = 0; n < m_ws.ListView1.size() && m_ws.firmware; ++n) {
            const edit::DecodedPicture decoded = edit::decodeFlashPicture(m_ws.firmware->bytes(), m_ws.ListView1[n], 24, 0, scratch);
            m_decodable[n] = !decoded.stopped && !decoded.refused ? 1 : 0;
        }
    }
    return m_decodable[static_cast<std::size_t>(row)] != 0;
}

}  // namespace korvatek::gui
