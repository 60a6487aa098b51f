#include "link/frmclone.h"

#include "core/AppState.h"
#include "link/CloneDriver.h"
#include "link/CloneEngine.h"
#include "link/TransferTexts.h"
#include "core/Language.h"
#include "ui/MessageBox.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include <utility>

namespace wr {

frmclone::frmclone(QWidget *parent)
    : QDialog(parent)
    , m_engine(std::make_unique<CloneEngine>(app()))
{
    setObjectName(QStringLiteral("frmclone"));
    setModal(true);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);

    m_label = new QLabel(this);
    m_label->setObjectName(QStringLiteral("lblPercent"));
    m_progress = new QProgressBar(this);
    m_progress->setObjectName(QStringLiteral("prgPercent"));
    m_progress->setRange(0, CloneEngine::ProgressMaximum);
    m_progress->setValue(0);
    m_progress->setTextVisible(false);
    // What the transfer is doing when the bar alone would look stuck:
    // retrying, or trying another port. One line, kept even when empty so
    // that the form does not jump; a long text never widens the form.
    m_status = new QLabel(this);
    m_status->setObjectName(QStringLiteral("lblStatus"));
    m_status->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    m_status->setMinimumHeight(m_status->fontMetrics().height());
    auto *cancel = new QPushButton(this);
    cancel->setObjectName(QStringLiteral("cmdCancel"));
    cancel->setAutoDefault(false);
    connect(cancel, &QPushButton::clicked, this, &frmclone::reject);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(18, 14, 18, 14);
    layout->setSpacing(8);
    layout->addWidget(m_label);
    layout->addWidget(m_progress);
    layout->addWidget(m_status);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cancel);
    layout->addLayout(buttons);
    setMinimumWidth(380);

    const int language = m_language = app().LanguageIndex;
    CloneDriver::Prompts prompts;
    prompts.askRetry = [this, language](const TransferOutcome &outcome) {
        return MessageBox::show(this, QMessageBox::Critical, lostConnectionTitle(language),
                                lostConnectionText(outcome, language), QMessageBox::Retry | QMessageBox::Cancel,
                                QMessageBox::Retry)
            == QMessageBox::Retry;
    };
    // Completion is news; a port that failed or a write that did not read
    // back equal is a warning.
    prompts.report = [this, language](const TransferOutcome &outcome) {
        MessageBox::show(this, outcome.succeeded() ? QMessageBox::Information : QMessageBox::Warning, ModelName(),
                         outcomeText(outcome, language));
    };
    m_driver = std::make_unique<CloneDriver>(*m_engine, prompts);
    connect(m_driver.get(), &CloneDriver::progressChanged, this, [this, language](int value) {
        m_progress->setValue(value);
        m_label->setText(progressLabel(value, language));
    });
    connect(m_driver.get(), &CloneDriver::statusChanged, this, [this, language](const TransferStatus &status) {
        const QString text = statusText(status, language);
        m_status->setText(text);
        m_status->setToolTip(text);
    });
    connect(m_driver.get(), &CloneDriver::portNumberChanged, this, &frmclone::portNumberChanged);
    connect(m_driver.get(), &CloneDriver::readCompleted, this, &frmclone::readCompleted);
    connect(m_driver.get(), &CloneDriver::unloaded, this,
            [this] { end(m_engine->outcome().succeeded() ? Accepted : Rejected); });

    // Captions as the form loads, by LinkDirection.
    m_engine->prepare();
    setWindowTitle(transferCaption(m_engine->direction() == CloneEngine::Direction::Read, language));
    m_label->setText(progressLabel(0, language));
    cancel->setText(Words::Cancel.in(language));
    // A screen reader hears the bar by name with its percentage, and the
    // line under it (named by its text) each time the text changes.
    m_progress->setAccessibleName(progressCaption(language));
    m_status->setAccessibleDescription(transferCaption(m_engine->direction() == CloneEngine::Direction::Read, language));
}

frmclone::~frmclone()
{
    m_driver->abort();
}

void frmclone::TransferDatas()
{
    if (m_started)
        return;
    m_started = true;
    m_driver->start();
}

bool frmclone::isTransferring() const
{
    return m_driver->isRunning();
}

void frmclone::setVerifyAfterWrite(bool on)
{
    m_engine->setVerify(on);
}

const TransferOutcome &frmclone::outcome() const
{
    return m_engine->outcome();
}

void frmclone::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    if (!m_started)
        QTimer::singleShot(0, this, &frmclone::TransferDatas);
}

void frmclone::reject()
{
    // Closing the form ends the transfer: the port closes, rows already read
    // stay in the image, nothing is snapshotted; rows already written stay
    // in the radio, and the warning says so.
    m_driver->abort();
    end(Rejected);
}

// After the messages the transfer has shown, as it showed them (the
// question answered Cancel, a port that failed): a radio that took part of
// the write would otherwise look like one that took none of it.
void frmclone::end(int result)
{
    if (!std::exchange(m_ended, true)) {
        const QString partly = partlyWrittenText(m_engine->outcome(), m_language);
        if (!partly.isEmpty())
            MessageBox::show(this, QMessageBox::Warning, ModelName(), partly);
    }
    done(result);
}

} // namespace wr
