#include "features/frmKey.h"

#include "features/KeyFields.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>

using namespace Qt::StringLiterals;

namespace wr {

namespace {

// The outline of a handheld radio with its seven programmable keys marked:
// P1-P3 on the left side around the push-to-talk bar, P4-P7 on the front
// under the display. Drawn in the widget's palette on a fixed grid of units,
// scaled to the widget, so it stays sharp at any screen scale. A screen
// reader finds it as a picture, and its description says where each key is.
class KeyPicture : public QWidget
{
    Q_OBJECT

public:
    explicit KeyPicture(QWidget *parent)
        : QWidget(parent)
    {
        setObjectName(u"Picture1"_s);
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
    }

    QSize sizeHint() const override { return Units.toSize(); }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const qreal scale = std::min(width() / Units.width(), height() / Units.height());
        painter.translate((width() - Units.width() * scale) / 2, (height() - Units.height() * scale) / 2);
        painter.scale(scale, scale);

        const QColor line = palette().color(QPalette::WindowText);
        const QColor body = palette().color(QPalette::Button);
        const QColor key = palette().color(QPalette::Highlight);
        const QColor keyText = palette().color(QPalette::HighlightedText);
        QFont font = this->font();
        font.setPixelSize(11);
        font.setBold(true);
        painter.setFont(font);
        painter.setPen(QPen(line, 1.5));

        // Antenna, volume knob, body, display and speaker grille.
        painter.setBrush(body.darker(125));
        painter.drawRoundedRect(QRectF(56, 4, 14, 64), 6, 6);
        painter.drawRoundedRect(QRectF(112, 46, 16, 22), 3, 3);
        painter.setBrush(body);
        painter.drawRoundedRect(QRectF(44, 66, 104, 232), 16, 16);
        painter.setBrush(palette().color(QPalette::Base));
        painter.drawRoundedRect(QRectF(58, 84, 76, 40), 4, 4);
        for (int slot = 0; slot < 6; ++slot)
            painter.drawLine(QPointF(66, 224 + slot * 10), QPointF(126, 224 + slot * 10));

        // The push-to-talk bar, unmarked: it cannot be programmed.
        painter.setBrush(body.darker(125));
        painter.drawRoundedRect(QRectF(36, 118, 8, 44), 3, 3);

        const auto markedKey = [&](const QRectF &shape, const QString &name, bool nameInside) {
            painter.setPen(QPen(line, 1.5));
            painter.setBrush(key);
            painter.drawRoundedRect(shape, 3, 3);
            if (nameInside) {
                painter.setPen(keyText);
                painter.drawText(shape, Qt::AlignCenter, name);
                return;
            }
            // A side key: its name to the left, joined to it by a short line.
            const QRectF label(0, shape.center().y() - 8, 22, 16);
            painter.setPen(QPen(line, 1));
            painter.drawLine(QPointF(label.right() + 1, shape.center().y()), QPointF(shape.left(), shape.center().y()));
            painter.setPen(line);
            painter.drawText(label, Qt::AlignVCenter | Qt::AlignLeft, name);
        };
        markedKey(QRectF(36, 94, 8, 16), u"P1"_s, false);
        markedKey(QRectF(36, 170, 8, 16), u"P2"_s, false);
        markedKey(QRectF(36, 194, 8, 16), u"P3"_s, false);
        markedKey(QRectF(60, 136, 34, 30), u"P4"_s, true);
        markedKey(QRectF(100, 136, 34, 30), u"P5"_s, true);
        markedKey(QRectF(60, 176, 34, 30), u"P6"_s, true);
        markedKey(QRectF(100, 176, 34, 30), u"P7"_s, true);
    }

private:
    static constexpr QSizeF Units{156, 302};
};

constexpr Text PictureName{u"The radio's programmable keys", u"对讲机的可编程按键", u"對講機的可編程按鍵"};
constexpr Text PictureDescription{
    u"P1 on the left side above the push-to-talk bar, P2 and P3 below it; on the front under the display, "
    "P4 and P5, then P6 and P7.",
    u"P1 在机身左侧 PTT 键上方，P2、P3 在其下方；正面显示屏下方是 P4、P5，再下面是 P6、P7。",
    u"P1 在機身左側 PTT 鍵上方，P2、P3 在其下方；正面顯示屏下方是 P4、P5，再下面是 P6、P7。"};

// Without it the painted picture would be an unnamed panel.
QAccessibleInterface *accessiblePicture(const QString &, QObject *object)
{
    if (auto *picture = qobject_cast<KeyPicture *>(object))
        return new QAccessibleWidget(picture, QAccessible::Graphic);
    return nullptr;
}

} // namespace

frmKey::frmKey(MemoryImage &image, Language language, QWidget *parent)
    : FieldDialog(image, language, parent)
{
    setObjectName(u"frmKey"_s);

    auto *keys = new QGridLayout;
    keys->setHorizontalSpacing(8);
    keys->addWidget(makeControl<QLabel>(u"Label20"_s), 0, 1);
    keys->addWidget(makeControl<QLabel>(u"Label21"_s), 0, 2);
    for (int key = 0; key < KeyCount; ++key) {
        auto *label = makeControl<QLabel>(u"Label1"_s + QString::number(key));
        auto *longPress = makeControl<QComboBox>(u"CobKeyL"_s + QString::number(key));
        label->setBuddy(longPress);
        keys->addWidget(label, key + 1, 0);
        keys->addWidget(longPress, key + 1, 1);
        keys->addWidget(makeControl<QComboBox>(u"CobKeyS"_s + QString::number(key)), key + 1, 2);
    }
    keys->setColumnStretch(1, 1);
    keys->setColumnStretch(2, 1);
    keys->setRowStretch(KeyCount + 1, 1);

    static const bool pictureReadable = [] {
        QAccessible::installFactory(accessiblePicture);
        return true;
    }();
    Q_UNUSED(pictureReadable);
    auto *picture = new KeyPicture(this);
    picture->setAccessibleName(PictureName.in(language));
    picture->setAccessibleDescription(PictureDescription.in(language));

    auto *top = new QHBoxLayout;
    top->addWidget(picture);
    top->addSpacing(12);
    top->addLayout(keys, 1);

    layOutWithButtons(top, u"CmdOK"_s, u"CmdCannel"_s);
    bindFields(KeyFields);
}

} // namespace wr

#include "frmKey.moc"
