#ifndef WIDGET_H
#define WIDGET_H
QT_BEGIN_NAMESPACE
class Q_WIDGETS_EXPORT QPainter
{
    Q_DECLARE_PRIVATE(QPainter)
    Q_GADGET
public:
    enum RenderHint { Antialiasing = 0x01 };
    Q_FLAG(RenderHint)
    Q_DECLARE_FLAGS(RenderHints, RenderHint)
    QPainter();
    bool begin(QPaintDevice *);
    QT_DEPRECATED_VERSION_X_6_0("Use setPen")
    void setColor(int c);
private:
    Q_DISABLE_COPY(QPainter)
    const int *data() const;
    int *d_ptr;
};

class Q_CORE_EXPORT QThread : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int priority READ priority WRITE setPriority)
public:
    explicit QThread(QObject *parent = nullptr);
    static QThread *currentThread();
    int priority() const;
Q_SIGNALS:
    void started(QPrivateSignal);
public Q_SLOTS:
    void start();
signals:
    void finished();
protected:
    uint isRunning : 1;
    uint isFinished : 1, wasCanceled : 1;
};
Q_DECLARE_TYPEINFO(QThread, Q_RELOCATABLE_TYPE);

#ifndef QT_NO_DEBUG_STREAM
QT_WARNING_PUSH
Q_CORE_EXPORT QDebug operator<<(QDebug, const QThread *);
QT_WARNING_POP
#endif

namespace QtPrivate {
class Q_CORE_EXPORT QThreadCoercer
{
public:
    const void *convert(const QVariant &value);
};
}

class BENCHMARK_EXPORT State
{
public:
    BENCHMARK_ALWAYS_INLINE
    bool KeepRunning();
private:
    BENCHMARK_DISALLOW_COPY_AND_ASSIGN(State);
    int64_t total_iterations_;
};

class TForm1 : public TForm
{
__published:
    DYNAMIC void __fastcall Resize();
BEGIN_MESSAGE_MAP
    VCL_MESSAGE_HANDLER(WM_SIZE, TWMSize, WMSize)
END_MESSAGE_MAP(TForm)
};
#endif
