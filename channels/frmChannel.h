#pragma once

#include <QWidget>

class QTableWidget;

namespace wr {

// The channel list: 128 channels in a grid edited in place. The grid is the
// working copy between RefreshData (image -> grid) and SaveData (grid ->
// image); only a new channel's default bytes reach the image at once.
class frmChannel : public QWidget
{
    Q_OBJECT

public:
    explicit frmChannel(QWidget *parent = nullptr);
    ~frmChannel() override;

    void RefreshChannelOP();
    void RefreshChannel();
    void RefreshData();
    void SaveData();
    void setChannelRx(int channel, const QString &text);
    void setChannelTx(int channel, const QString &text);
    void TxtChannel_Validate();
    void CboChannel_Validate(int index);

    // Commits whichever in-place editor is open (text editor first, then the
    // combos) and gives the focus back to the grid. The main window runs it
    // before every command.
    void commitOpenEditor();

    QTableWidget *grid() const;

Q_SIGNALS:
    // Right click with Shift, Ctrl and Alt held, after the grid was saved.
    void memoryMapRequested();
};

} // namespace wr
