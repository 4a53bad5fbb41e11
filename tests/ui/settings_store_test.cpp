// The settings file when it cannot be taken: it is kept, named, and never
// overwritten at exit without a copy.
#include "shell/ui/qt_settings_store.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>
#include <functional>
#include <unistd.h>

using lumiran::QtSettingsStore;

namespace {

const QByteArray Garbage("\x89PNG\r\n\x1a\n\0\0\0\rIHDR\xff\xfe[Settings]\nVasion=0.49\n", 37);

void write(const QString& path, const QByteArray& bytes) {
    QFile out(path);
    QVERIFY(out.open(QIODevice::WriteOnly));
    out.write(bytes);
}

QByteArray contents(const QString& path) {
    QFile in(path);
    return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray();
}

} // namespace

class SettingsStoreTest : public QObject {
    Q_OBJECT

  private slots:
    void unreadableStatesAreKeptAndNamed_data() {
        QTest::addColumn<QString>("kind");
        QTest::newRow("binary garbage") << "garbage";
        QTest::newRow("copy name taken by a folder") << "broken-is-folder";
        QTest::newRow("settings folder is a file") << "folder-is-file";
        QTest::newRow("unreadable file") << "mode-000";
    }

    void unreadableStatesAreKeptAndNamed() {
        QFETCH(QString, kind);
        QTemporaryDir dir;
        const QString ini = dir.filePath("Lumiran/Lumiran.ini");
        QString original = ini;
        QString keptAt = ini + ".broken";
        if (kind == "folder-is-file") {
            original = dir.filePath("Lumiran");
            keptAt = original;
            write(original, Garbage);
        } else {
            QVERIFY(QDir(dir.path()).mkpath("Lumiran"));
            write(ini, Garbage);
        }
        if (kind == "broken-is-folder") {
            QVERIFY(QDir(dir.path()).mkpath("Lumiran/Lumiran.ini.broken"));
            keptAt = ini;
        }
        if (kind == "mode-000") {
            if (::geteuid() == 0) QSKIP("root reads a mode-000 file all the same");
            QVERIFY(QFile::setPermissions(ini, {}));
            keptAt = ini;
        }
        {
            QtSettingsStore store(ini);
            QVERIFY(store.unreadable());
            QCOMPARE(store.keepOriginal(), QFileInfo(keptAt).absoluteFilePath());
            store.set("Settings", "Vasion", "0.49");
            store.sync();
        }
        QFile::setPermissions(ini, QFile::ReadOwner | QFile::WriteOwner);
        if (keptAt == original) {
            QCOMPARE(contents(original), Garbage); // left untouched, not rewritten
        } else {
            QCOMPARE(contents(keptAt), Garbage);
            QtSettingsStore again(ini); // started afresh, without the garbage
            QVERIFY(!again.unreadable());
            QCOMPARE(again.get("Settings", "Vasion").value_or(""), std::string("0.49"));
        }
    }

    void aMissingOrGoodFileIsReadable() {
        QTemporaryDir dir;
        const QString ini = dir.filePath("Lumiran.ini");
        QVERIFY(!QtSettingsStore(ini).unreadable());
        write(ini, "[Settings]\nVasion=0.49\n");
        QtSettingsStore store(ini);
        QVERIFY(!store.unreadable());
        QCOMPARE(store.get("Settings", "Vasion").value_or(""), std::string("0.49"));
    }
};

QTEST_MAIN(SettingsStoreTest)
#include "settings_store_test.moc"
