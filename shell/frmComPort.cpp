#include "shell/frmComPort.h"

#include "shell/AppIcon.h"

#include <QComboBox>
#include <QFormLayout>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace wr {

namespace {

constexpr Caption Captions[]{
    {u"frmComPort", {u"Communication Port", u"通信端口", u"通信端口"}},
    {u"Label1", {u"COMM", u"串口", u"串口"}},
    {u"Label2", {u"Device:", u"设备：", u"設備："}},
    {u"Label3", {u"Description:", u"描述：", u"描述："}},
    {u"CmdOK", Words::OK},
    {u"cmdCancel", Words::Cancel},
};
constexpr FieldTable Texts{.captions = Captions};

} // namespace

frmComPort::frmComPort(quint8 portNumber, Language language, QWidget *parent)
    : FormDialog(language, parent)
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
    auto *details = new QFrame(this);
    details->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
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

    auto *top = new QHBoxLayout;
    top->addWidget(label1, 0, Qt::AlignTop);
    top->addWidget(m_combo1, 0, Qt::AlignTop);
    top->addSpacing(12);
    top->addWidget(details, 1);
    layOutWithButtons(top, u"CmdOK"_s, u"cmdCancel"_s, 12);
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
}

std::optional<quint8> frmComPort::portNumberOf(const QString &text)
{
    static const QRegularExpression pattern(u"^COM(\\d{1,3})$"_s, QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = pattern.match(text.trimmed());
    if (!match.hasMatch())
        return std::nullopt;
    const int number = match.captured(1).toInt();
    if (number > 255)
        return std::nullopt;
    return static_cast<quint8>(number);
}

void frmComPort::showDetails()
{
    const std::optional<quint8> number = portNumberOf(m_combo1->currentText());
    std::optional<PortEntry> entry;
    if (number)
        entry = findPort(m_ports, *number);
    if (!entry) {
        m_lblDevice->clear();
        m_lblDescription->clear();
        return;
    }
    m_lblDevice->setText(entry->devicePath);
    QString description = entry->description;
    if (!entry->manufacturer.isEmpty() && !description.contains(entry->manufacturer))
        description = description.isEmpty() ? entry->manufacturer : description + u" ("_s + entry->manufacturer + u')';
    m_lblDescription->setText(description);
}

void frmComPort::accept()
{
    // A text that names no port leaves the port as it was: there is nothing
    // sensible to store from it.
    if (const std::optional<quint8> number = portNumberOf(m_combo1->currentText()))
        m_portNumber = *number;
    QDialog::accept();
}

} // namespace wr
