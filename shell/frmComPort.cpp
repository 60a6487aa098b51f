#include "shell/frmComPort.h"

#include "link/DoctorTexts.h"
#include "shell/AppIcon.h"

#include <QComboBox>
#include <QFormLayout>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace wr {

namespace {

constexpr Text TestCaption{u"&Test", u"测试(&T)", u"測試(&T)"};
constexpr Text CancelTest{u"Cancel &Test", u"取消测试(&T)", u"取消測試(&T)"};
constexpr Text TestResultName{u"Connection test result", u"连接测试结果", u"連接測試結果"};

// The description of a port the user named with a link in the serial-ports
// folder; the device it leads to shows above it.
constexpr Text LinkDescription{u"Link to this device", u"指向该设备的链接", u"指向該設備的連結"};

constexpr Caption Captions[]{
    {u"frmComPort", {u"Communication Port", u"通信端口", u"通信端口"}},
    {u"Label1", {u"COMM", u"串口", u"串口"}},
    {u"Label2", {u"Device:", u"设备：", u"設備："}},
    {u"Label3", {u"Description:", u"描述：", u"描述："}},
    {u"cmdTest", TestCaption},
    {u"CmdOK", Words::OK},
    {u"cmdCancel", Words::Cancel},
};
constexpr FieldTable Texts{.captions = Captions};

// The box around the port's details. The style draws a panel's line on the
// widget's outermost row and column of pixels. At 150 % a widget at an odd
// position starts half way into a screen pixel; its painting is clipped to
// the whole pixels inside it, and with them go the top and left lines. Drawn
// here half a pixel inside the edge, one screen pixel wide (two from 200 %)
// in the palette's Mid, the colour of the style's own line, the box keeps
// all four sides at any scale.
class DetailsFrame : public QFrame
{
public:
    using QFrame::QFrame;

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        QPen pen(palette().color(QPalette::Mid));
        pen.setCosmetic(true);
        pen.setWidth(std::max(1, int(devicePixelRatioF())));
        painter.setPen(pen);
        painter.drawRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5));
    }
};

} // namespace

frmComPort::frmComPort(quint8 portNumber, Language language, QWidget *parent)
    : FormDialog(language, parent)
    , m_doctor(new ConnectionDoctor(this))
    , m_portNumber(portNumber)
{
    setObjectName(u"frmComPort"_s);
    setWindowIcon(AppIcon());
    auto *label1 = makeControl<QLabel>(u"Label1"_s);
    m_combo1 = makeControl<QComboBox>(u"Combo1"_s);
    m_combo1->setMinimumContentsLength(8);
    label1->setBuddy(m_combo1);

    // Which device the selected name stands for, so the user can tell the
    // programming cable from other serial adapters.
    auto *details = new DetailsFrame(this);
    details->setObjectName(u"fraDetails"_s);
    details->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken); // its width still spaces the contents
    auto *detailsLayout = new QFormLayout(details);
    m_lblDevice = makeControl<QLabel>(u"lblDevice"_s, details);
    m_lblDevice->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_lblDevice->setMinimumWidth(200);
    m_lblDescription = makeControl<QLabel>(u"lblDescription"_s, details);
    m_lblDescription->setWordWrap(true);
    auto *deviceName = makeControl<QLabel>(u"Label2"_s, details);
    deviceName->setBuddy(m_lblDevice);
    detailsLayout->addRow(deviceName, m_lblDevice);
    auto *descriptionName = makeControl<QLabel>(u"Label3"_s, details);
    descriptionName->setBuddy(m_lblDescription);
    detailsLayout->addRow(descriptionName, m_lblDescription);

    // The connection test: its button before OK in the Tab order, at the
    // left of the button row; what it found under the port, as wide as the
    // dialog and as tall as the words need.
    m_cmdTest = makeControl<QPushButton>(u"cmdTest"_s);
    m_cmdTest->setAutoDefault(false);
    m_lblTestResult = makeControl<QLabel>(u"lblTestResult"_s);
    m_lblTestResult->setWordWrap(true);
    m_lblTestResult->setTextInteractionFlags(Qt::TextSelectableByMouse);
    QSizePolicy wraps(QSizePolicy::Ignored, QSizePolicy::Preferred);
    wraps.setHeightForWidth(true);
    m_lblTestResult->setSizePolicy(wraps);
    m_lblTestResult->setAccessibleDescription(TestResultName.in(language));

    auto *top = new QHBoxLayout;
    top->addWidget(label1, 0, Qt::AlignTop);
    top->addWidget(m_combo1, 0, Qt::AlignTop);
    top->addSpacing(12);
    top->addWidget(details, 1);
    auto *content = new QVBoxLayout;
    content->addLayout(top);
    content->addWidget(m_lblTestResult);
    const ButtonRow buttons = layOutWithButtons(content, u"CmdOK"_s, u"cmdCancel"_s, 12);
    buttons.layout->insertWidget(0, m_cmdTest);
    caption(Texts);

    // The user may also type a port name the system does not list (a cable
    // plugged in later); OK accepts it when it reads "COM" + number.
    m_combo1->setEditable(true);
    m_combo1->setInsertPolicy(QComboBox::NoInsert);

    // One look at the system: the names listed are the PortList of this
    // catalogue, and the details beside the list come from the same entries.
    m_ports = portCatalogue();
    const QStringList names = portListOf(m_ports);
    if (!names.isEmpty() && !names.first().isEmpty()) {
        m_combo1->addItems(names);
        const int wanted = m_combo1->findText(u"COM"_s + QString::number(portNumber), Qt::MatchExactly
                                                                                          | Qt::MatchCaseSensitive);
        m_combo1->setCurrentIndex(wanted >= 0 ? wanted : 0);
    } else {
        m_combo1->setCurrentIndex(-1);
        m_combo1->setEditText(QString());
    }

    showDetails();
    connect(m_combo1, &QComboBox::currentTextChanged, this, &frmComPort::showDetails);
    connect(m_cmdTest, &QPushButton::clicked, this, &frmComPort::cmdTest_Click);
    connect(m_doctor, &ConnectionDoctor::waitingForDevice, this, [this](int port, int msLeft) {
        m_lblTestResult->setText(doctorWaitingText(port, msLeft, this->language()));
    });
    connect(m_doctor, &ConnectionDoctor::askingRadio, this,
            [this](int port) { m_lblTestResult->setText(doctorAskingText(port, this->language())); });
    connect(m_doctor, &ConnectionDoctor::finished, this, &frmComPort::showTestResult);
}

std::optional<quint8> frmComPort::chosenPort() const
{
    const std::optional<int> number = portNumberOf(m_combo1->currentText());
    return number ? std::optional<quint8>(static_cast<quint8>(*number)) : std::nullopt;
}

void frmComPort::showDetails()
{
    // Another port chosen: a test of the one before says nothing about it.
    if (m_doctor->isRunning()) {
        m_doctor->cancel();
        setTestRunning(false);
    }
    m_lblTestResult->clear();
    const std::optional<quint8> number = chosenPort();
    m_cmdTest->setEnabled(number.has_value());
    std::optional<PortEntry> entry;
    if (number)
        entry = findPort(m_ports, *number);
    if (!entry) {
        m_lblDevice->clear();
        m_lblDescription->clear();
        return;
    }
    m_lblDevice->setText(entry->devicePath);
    QString description = entry->isLink ? LinkDescription.in(language()) : entry->description;
    if (!entry->manufacturer.isEmpty() && !description.contains(entry->manufacturer))
        description = description.isEmpty() ? entry->manufacturer : description + u" ("_s + entry->manufacturer + u')';
    m_lblDescription->setText(description);
}

void frmComPort::accept()
{
    // A text that names no port leaves the port as it was: there is nothing
    // sensible to store from it.
    if (const std::optional<quint8> number = chosenPort())
        m_portNumber = *number;
    QDialog::accept();
}

void frmComPort::cmdTest_Click()
{
    // While it runs, the button cancels it; a wait for the cable ends with
    // the ports there are.
    if (m_doctor->isRunning()) {
        m_doctor->cancel();
        setTestRunning(m_doctor->isRunning());
        return;
    }
    const std::optional<quint8> number = chosenPort();
    if (!number)
        return;
    setTestRunning(true);
    m_doctor->start(*number, ConnectionDoctor::DefaultWaitMs);
}

void frmComPort::showTestResult(const Diagnosis &diagnosis)
{
    setTestRunning(false);
    // A cable plugged in meanwhile joins the list, under the name the test gives it.
    const QString chosen = m_combo1->currentText();
    m_ports = portCatalogue();
    const QSignalBlocker quiet(m_combo1);
    m_combo1->clear();
    const QStringList names = portListOf(m_ports);
    if (!names.first().isEmpty())
        m_combo1->addItems(names);
    m_combo1->setCurrentIndex(m_combo1->findText(chosen, Qt::MatchExactly | Qt::MatchCaseSensitive));
    m_combo1->setEditText(chosen);
    showDetails();
    m_lblTestResult->setText(diagnosisDetail(diagnosis, language()) + u'\n' + diagnosisAdvice(diagnosis, language()));
}

void frmComPort::setTestRunning(bool running)
{
    m_cmdTest->setText((running ? CancelTest : TestCaption).in(language()));
}

} // namespace wr
