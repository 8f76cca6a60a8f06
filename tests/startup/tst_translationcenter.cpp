#include <QCoreApplication>
#include <QTest>

#include "startup/startuphost.h"
#include "startup/translationcenter.h"

namespace {

const QString folder = QStringLiteral(RX_CATALOGUE_DIR);
const QString catalogue = QStringLiteral("FixtureGui");

QString Shown()
{
    return QCoreApplication::translate("FixtureGui", "Bandwidth");
}

}  // namespace

class TestTranslationCenter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { StartupHost::SetTranslations(folder, QStringLiteral("de")); }
    void cleanup() { StartupHost::SetTranslations(QString(), QString()); }

    void aRegisteredCatalogueTranslates()
    {
        QCOMPARE(Shown(), QStringLiteral("Bandwidth"));
        TranslationCenter::Instance()->Register(catalogue);
        QCOMPARE(Shown(), QStringLiteral("Bandbreite"));
        TranslationCenter::Instance()->Unregister(catalogue);
        QCOMPARE(Shown(), QStringLiteral("Bandwidth"));
    }

    void aCatalogueStaysUntilItsLastUserGivesItBack()
    {
        TranslationCenter::Instance()->Register(catalogue);
        TranslationCenter::Instance()->Register(catalogue);
        TranslationCenter::Instance()->Unregister(catalogue);
        QCOMPARE(Shown(), QStringLiteral("Bandbreite"));
        TranslationCenter::Instance()->Unregister(catalogue);
        QCOMPARE(Shown(), QStringLiteral("Bandwidth"));
    }

    void givingBackMoreThanWasTakenIsHarmless()
    {
        TranslationCenter::Instance()->Unregister(catalogue);
        TranslationCenter::Instance()->Unregister(QStringLiteral("never registered"));
        TranslationCenter::Instance()->Register(catalogue);
        QCOMPARE(Shown(), QStringLiteral("Bandbreite"));
        TranslationCenter::Instance()->Unregister(catalogue);
    }

    void aNameWithoutACatalogueIsHarmless()
    {
        TranslationCenter::Instance()->Register(QStringLiteral("NoSuchCatalogue"));
        QCOMPARE(Shown(), QStringLiteral("Bandwidth"));
        TranslationCenter::Instance()->Unregister(QStringLiteral("NoSuchCatalogue"));
    }

    void aLanguageThatIsSetLaterReachesRegisteredCatalogues()
    {
        TranslationCenter::Instance()->Register(catalogue);
        StartupHost::SetTranslations(folder, QStringLiteral("fr"));
        QCOMPARE(Shown(), QStringLiteral("Largeur de bande"));
        StartupHost::SetTranslations(folder, QStringLiteral("it"));
        QCOMPARE(Shown(), QStringLiteral("Bandwidth"));
        TranslationCenter::Instance()->Unregister(catalogue);
    }

    void aCountryWithoutACatalogueOfItsOwnTakesItsLanguages()
    {
        StartupHost::SetTranslations(folder, QStringLiteral("de_AT"));
        TranslationCenter::Instance()->Register(catalogue);
        QCOMPARE(Shown(), QStringLiteral("Bandbreite"));
        TranslationCenter::Instance()->Unregister(catalogue);
    }

    void textsOfASelectionsNamespaceComeThroughInstalledCatalogues()
    {
        TranslationCenter::Instance()->Register(QStringLiteral("FixtureItems"));
        QCOMPARE(QCoreApplication::translate("DemodBandwidth", "wide"), QStringLiteral("breit"));
        QCOMPARE(QCoreApplication::translate("DemodBandwidth", "narrow"), QStringLiteral("narrow"));
        TranslationCenter::Instance()->Unregister(QStringLiteral("FixtureItems"));
    }
};

QTEST_GUILESS_MAIN(TestTranslationCenter)
#include "tst_translationcenter.moc"
