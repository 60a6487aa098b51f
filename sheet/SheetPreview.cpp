#include "sheet/SheetPreview.h"

#include "core/SettingsStore.h"
#include "file/DataFile.h"
#include "sheet/ChannelSheet.h"
#include "sheet/PdfTextMap.h"
#include "ui/Accessible.h"
#include "ui/MessageBox.h"

#include <QAction>
#include <QComboBox>
#include <QGraphicsView>
#include <QLineEdit>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPaintEngine>
#include <QPrintPreviewDialog>
#include <QPrintPreviewWidget>
#include <QPrinter>
#include <QToolBar>

using namespace Qt::StringLiterals;

namespace wr::sheet {

namespace {

constexpr Text SaveAsPdf{u"Save as PDF…", u"另存为 PDF…", u"另存為 PDF…"};
constexpr Text PageNumber{u"Page number", u"页码", u"頁碼"};
constexpr Text Zoom{u"Zoom", u"缩放", u"縮放"};
constexpr Text Pages{u"Pages of the sheet", u"信道表页面", u"信道表頁面"};

// The paper, under a key of its own beside the program's start-up values,
// by the name QPageSize gives it ("A4", "Letter").
QString paperKey()
{
    return SettingsStore::keyPath() + u"\\Channel Sheet"_s;
}

const QString PaperValue = u"Paper"_s;

QPageSize::PageSizeId rememberedPaper(const SettingsStore &settings)
{
    const QString name = settings.GetKeyValue(SettingsStore::Root::LocalMachine, paperKey(), PaperValue);
    for (int id = 0; id <= QPageSize::LastPageSize; ++id) {
        if (!name.isEmpty() && QPageSize::key(QPageSize::PageSizeId(id)) == name)
            return QPageSize::PageSizeId(id);
    }
    return localePaper();
}

// Printing to a file (the print dialog's "Print to File") goes through the
// same PDF writer as saving; its text maps get the same repair. The preview
// paints into pictures, not into a file.
void repairPrintedFile(QPrinter &printer, const QList<DrawnFont> &fonts)
{
    const QString path = printer.outputFileName();
    if (fonts.isEmpty() || printer.outputFormat() != QPrinter::PdfFormat || path.isEmpty()
        || printer.paintEngine()->type() != QPaintEngine::Pdf)
        return;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return;
    const QByteArray printed = file.readAll();
    file.close();
    const QByteArray repaired = repairTextMaps(printed, fonts);
    if (repaired != printed)
        DataFile::WriteBytes(path, repaired, nullptr); // a failure leaves the printed file as it was
}

void savePdf(QWidget *parent, const SheetContent &content, QPageSize::PageSizeId paper, const QString &dataFile)
{
    const Language language = content.language;
    const QString proposed = dataFile.isEmpty() ? u"channel-sheet.pdf"_s
                                                : QFileInfo(dataFile).dir().filePath(
                                                      QFileInfo(dataFile).completeBaseName() + u".pdf"_s);
    QString path = FileDialog::getSaveFileName(parent, dialogTitle(SaveAsPdf, language), proposed, u"PDF (*.pdf)"_s);
    if (path.isEmpty())
        return;
    if (QFileInfo(path).suffix().isEmpty())
        path += u".pdf"_s;
    const QByteArray pdf = sheetPdf(content, sheetPageLayout(paper));
    QString error;
    if (!pdf.isEmpty() && DataFile::WriteBytes(path, pdf, &error))
        return;
    MessageBox::show(parent, QMessageBox::Critical, Words::Error.in(language), path + u"\n\n"_s + error);
}

} // namespace

void showChannelSheet(QWidget *parent, const MemoryImage &image, Language language, const QString &dataFile,
                      const QList<int> &channels, SettingsStore &settings)
{
    const SheetContent content = sheetContent(image, language, QFileInfo(dataFile).fileName(),
                                              QDateTime::currentDateTime(), channels);
    QPrinter printer(QPrinter::HighResolution);
    printer.setPageLayout(sheetPageLayout(rememberedPaper(settings)));
    printer.setDocName(SheetTitle.in(language));

    useSpokenNames();
    QPrintPreviewDialog dialog(&printer, parent);
    dialog.setObjectName(u"frmChannelSheet"_s);
    dialog.setWindowTitle(SheetTitle.in(language));
    QObject::connect(&dialog, &QPrintPreviewDialog::paintRequested, &dialog, [&content](QPrinter *target) {
        repairPrintedFile(*target, printSheet(content, *target));
    });
    auto *save = new QAction(SaveAsPdf.in(language), &dialog);
    save->setObjectName(u"actSaveSheetPdf"_s);
    save->setShortcut(QKeySequence::Save);
    QObject::connect(save, &QAction::triggered, &dialog, [&] {
        savePdf(&dialog, content, printer.pageLayout().pageSize().id(), dataFile);
    });
    // Qt's preview names its buttons; its page number box and its zoom
    // list have no label to name them for a screen reader.
    for (QComboBox *zoom : dialog.findChildren<QComboBox *>())
        zoom->setAccessibleName(Zoom.in(language));
    for (QLineEdit *page : dialog.findChildren<QLineEdit *>()) {
        if (!qobject_cast<QComboBox *>(page->parentWidget()))
            page->setAccessibleName(PageNumber.in(language));
    }
    nameListTexts(&dialog);
    if (auto *preview = dialog.findChild<QPrintPreviewWidget *>()) {
        preview->setAccessibleName(Pages.in(language));
        for (QGraphicsView *pages : preview->findChildren<QGraphicsView *>()) {
            pages->setAccessibleName(Pages.in(language));
            pages->viewport()->setAccessibleName(Pages.in(language));
        }
    }
    if (auto *toolBar = dialog.findChild<QToolBar *>()) {
        toolBar->addSeparator();
        toolBar->addAction(save);
    }
    dialog.exec();

    settings.SetKeyValue(SettingsStore::Root::LocalMachine, paperKey(), PaperValue,
                         QPageSize::key(printer.pageLayout().pageSize().id()));
}

} // namespace wr::sheet
