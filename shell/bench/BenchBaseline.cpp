// The yardstick for BenchStartup: a minimal Qt Widgets program that opens one
// empty main window of the same size and quits at its first paint.
#include <QApplication>
#include <QElapsedTimer>
#include <QMainWindow>

#include <cstdio>

namespace {

class FirstPaint : public QObject
{
public:
    FirstPaint(QWidget *target, const QElapsedTimer &clock)
        : m_target(target)
        , m_clock(clock)
    {
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (watched == m_target && event->type() == QEvent::Paint && !m_done) {
            m_done = true;
            std::printf("%.2f\n", static_cast<double>(m_clock.nsecsElapsed()) / 1e6);
            QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection);
        }
        return false;
    }

private:
    QWidget *m_target;
    const QElapsedTimer &m_clock;
    bool m_done = false;
};

} // namespace

int main(int argc, char *argv[])
{
    QElapsedTimer clock;
    clock.start();
    QApplication application(argc, argv);
    QMainWindow window;
    auto *central = new QWidget(&window);
    window.setCentralWidget(central);
    window.resize(894, 763);
    FirstPaint probe(central, clock);
    central->installEventFilter(&probe);
    window.show();
    return application.exec();
}
