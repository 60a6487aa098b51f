#include "shell/StatusPanels.h"

#include "channels/ChannelRecord.h"
#include "core/AppState.h"

#include <QAccessible>
#include <QDate>
#include <QLabel>
#include <QLocale>
#include <QStatusBar>
#include <QTime>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace wr {

namespace {

constexpr Text ChannelsShown{u"%1 of %2 channels shown", u"显示 %1 / %2 个信道", u"顯示 %1 / %2 個信道"};

QLocale localeOf(Language language)
{
    switch (language) {
    case SimplifiedChinese:
        return QLocale(QLocale::Chinese, QLocale::SimplifiedHanScript, QLocale::China);
    case TraditionalChinese:
        return QLocale(QLocale::Chinese, QLocale::TraditionalHanScript, QLocale::Taiwan);
    default:
        return QLocale(QLocale::English, QLocale::UnitedStates);
    }
}

// What a screen reader says the bar and each panel are; the panels' names
// are their texts.
constexpr Text BarName{u"Status bar", u"状态栏", u"狀態列"};
constexpr Text PanelDescriptions[]{{u"Serial port", u"串口", u"串口"}, {u"Date", u"日期", u"日期"},
                                   {u"Time", u"时间", u"時間"},        {u""},
                                   {u"Version", u"版本", u"版本"}};

} // namespace

StatusPanels::StatusPanels(QStatusBar *bar)
    : QObject(bar)
    , m_time(new QTimer(this))
    , m_note(new QLabel(bar))
    , m_noteTime(new QTimer(this))
{
    bar->setObjectName(u"MSBar"_s);
    bar->setSizeGripEnabled(true);
    const int widths[PanelCount] = {70, 100, 80, 0, 110};
    for (int i = 0; i < PanelCount; ++i) {
        auto *panel = new QLabel(bar);
        panel->setObjectName(u"MSBar_Panel"_s + QString::number(i + 1));
        panel->setFrameStyle(QFrame::Panel | QFrame::Sunken);
        panel->setContentsMargins(4, 0, 4, 0);
        if (widths[i] > 0)
            panel->setMinimumWidth(widths[i]);
        // Permanent widgets stay visible while a menu shows status tips.
        bar->addPermanentWidget(panel, i == EmptyPanel ? 1 : 0);
        m_panels.append(panel);
    }

    m_note->setObjectName(u"MSBar_Note"_s);
    m_note->setContentsMargins(4, 0, 4, 0);
    m_note->hide();
    bar->addWidget(m_note, 1);
    m_noteTime->setObjectName(u"tmrNote"_s);
    m_noteTime->setSingleShot(true);
    connect(m_noteTime, &QTimer::timeout, this, &StatusPanels::endNote);

    m_time->setObjectName(u"Time"_s);
    m_time->setTimerType(Qt::PreciseTimer);
    m_time->setSingleShot(true);
    connect(m_time, &QTimer::timeout, this, &StatusPanels::Time_Timer);
    Time_Timer();
}

void StatusPanels::showNote(const Text &note, int milliseconds)
{
    showNote(note.in(m_language), milliseconds);
    m_noteText = note;
}

void StatusPanels::showPort(quint8 portNumber)
{
    m_panels[PortPanel]->setText(u"COM"_s + QString::number(portNumber));
}

void StatusPanels::showLanguage(Language language)
{
    m_language = language;
    m_panels[VersionPanel]->setText(u"Version "_s + ProgramVersion());
    static_cast<QWidget *>(parent())->setAccessibleName(BarName.in(language));
    for (int i = 0; i < PanelCount; ++i)
        m_panels[i]->setAccessibleDescription(PanelDescriptions[i].in(language));
    if (m_noteText)
        m_note->setText(m_noteText->in(language));
    showDate();
    showShownCount();
}

void StatusPanels::showChannelsShown(int shown)
{
    m_shown = shown;
    showShownCount();
}

// The panel has no accessible name of its own, so its text is its name; a
// screen reader speaks the new name when it is told of the change.
void StatusPanels::showShownCount()
{
    QString text;
    if (m_shown >= 0)
        text = ChannelsShown.in(m_language).arg(m_shown).arg(ChannelRecord::ChannelCount);
    QLabel *panel = m_panels[EmptyPanel];
    if (panel->text() == text)
        return;
    panel->setText(text);
    QAccessibleEvent changed(panel, QAccessible::NameChanged);
    QAccessible::updateAccessibility(&changed);
}

void StatusPanels::showDate()
{
    m_panels[DatePanel]->setText(localeOf(m_language).toString(QDate::currentDate(), QLocale::ShortFormat));
}

void StatusPanels::showNote(const QString &text, int milliseconds)
{
    m_noteText.reset();
    for (QLabel *panel : std::as_const(m_panels))
        panel->hide();
    // The note appears away from the focus; a label tells a screen reader
    // when its text (its accessible name) changes, once it is shown, and a
    // note repeated is a change too.
    m_note->show();
    m_note->clear();
    m_note->setText(text);
    m_noteTime->start(milliseconds);
}

void StatusPanels::endNote()
{
    m_noteText.reset();
    m_note->hide();
    m_note->clear();
    for (QLabel *panel : std::as_const(m_panels))
        panel->show();
}

void StatusPanels::Time_Timer()
{
    // One tick a second is all the clock needs. Each tick re-arms the timer
    // for just after the next full second, so the shown seconds never lag or
    // skip however long the previous tick was delayed.
    const QTime now = QTime::currentTime();
    m_panels[ClockPanel]->setText(now.toString(u"hh:mm:ss"_s));
    showDate();
    m_time->start(1000 - now.msec() + 2);
}

} // namespace wr
