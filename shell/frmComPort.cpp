#include "shell/frmComPort.h"

#include "core/Language.h"
#include "shell/AppIcon.h"

#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace wr {

frmComPort::frmComPort(quint8 portNumber, int language, QWidget *parent)
    : QDialog(parent)
    , m_label1(new QLabel(this))
    , m_combo1(new QComboBox(this))
    , m_lblDevice(new QLabel(this))
    , m_lblDescription(new QLabel(this))
    , m_cmdOK(new QPushButton(this))
    , m_cmdCancel(new QPushButton(this))
    , m_portNumber(portNumber)
{
    setObjectName(QStringLiteral("frmComPort"));
    m_label1->setObjectName(QStringLiteral("Label1"));
    m_combo1->setObjectName(QStringLiteral("Combo1"));
    m_lblDevice->setObjectName(QStringLiteral("lblDevice"));
    m_lblDescription->setObjectName(QStringLiteral("lblDescription"));
    m_cmdOK->setObjectName(QStringLiteral("CmdOK"));
    m_cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    setWindowIcon(AppIcon());
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);

    setWindowTitle(Text(u"Communication Port", u"通信端口", u"通信端口").in(language));
    m_label1->setText(Text(u"COMM", u"串口", u"串口").in(language));
    m_cmdOK->setText(Words::OK.in(language));
    m_cmdCancel->setText(Words::Cancel.in(language));

    // The user may also type a port name the system does not list (a cable
    // plugged in later); OK accepts it when it reads "COM" + number.
    m_combo1->setEditable(true);
    m_combo1->setInsertPolicy(QComboBox::NoInsert);
    m_combo1->setMinimumContentsLength(8);
    m_label1->setBuddy(m_combo1);

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

    // Which device the selected name stands for, so the user can tell the
    // programming cable from other serial adapters.
    auto *details = new QFrame(this);
    details->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    auto *detailsLayout = new QFormLayout(details);
    m_lblDevice->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_lblDescription->setWordWrap(true);
    m_lblDevice->setMinimumWidth(200);
    detailsLayout->addRow(Text(u"Device:", u"设备：", u"設備：").in(language), m_lblDevice);
    detailsLayout->addRow(Text(u"Description:", u"描述：", u"描述：").in(language), m_lblDescription);

    auto *top = new QHBoxLayout;
    top->addWidget(m_label1, 0, Qt::AlignTop);
    top->addWidget(m_combo1, 0, Qt::AlignTop);
    top->addSpacing(12);
    top->addWidget(details, 1);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(m_cmdOK);
    buttons->addWidget(m_cmdCancel);
    auto *layout = new QGridLayout(this);
    layout->addLayout(top, 0, 0);
    layout->setRowMinimumHeight(1, 12);
    layout->addLayout(buttons, 2, 0);
    layout->setSizeConstraint(QLayout::SetFixedSize);

    showDetails();
    m_cmdOK->setDefault(true);
    connect(m_combo1, &QComboBox::currentTextChanged, this, &frmComPort::showDetails);
    connect(m_cmdOK, &QPushButton::clicked, this, &frmComPort::CmdOK_Click);
    connect(m_cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
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

void frmComPort::CmdOK_Click()
{
    // A text that names no port leaves the port as it was: there is nothing
    // sensible to store from it.
    if (const std::optional<quint8> number = portNumberOf(m_combo1->currentText()))
        m_portNumber = *number;
    accept();
}

} // namespace wr
