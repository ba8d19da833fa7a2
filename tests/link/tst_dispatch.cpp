#include "linkjournal.h"
#include "sentencereports.h"
#include "support/checkedline.h"

#include <QMetaMethod>
#include <QtTest>

using namespace Reports;

/*!
 * Each sentence of the router as it should be, with fields that are missing, too many or not what
 * they should be, and what is no sentence: the signals that it raises.
 */
class tst_Dispatch : public QObject
{
    Q_OBJECT

private slots:
    void signalsAndSlots();
    void sentencesBySlot_data() { sentences(); }
    void sentencesBySlot();
    void sentencesByBytes_data() { sentences(); }
    void sentencesByBytes();
    void bareText_data();
    void bareText();

private:
    static void sentences();
    static void configurationSentences();
    static void reportSentences();
    static void unknownSentences();
};

namespace {

void row(const char *name, const QByteArray &line, const QStringList &expected)
{
    QTest::newRow(name) << line << expected;
}

} // namespace

// The link's own, as its meta-object has them, in their order.
void tst_Dispatch::signalsAndSlots()
{
    const QString expected = QString::fromLatin1(
        "signalErrorOpenPort() signalErrorWritePort() signalVRNMEA_receive(QString) "
        "signalNMEA_receive(QString) signalVRConnect(uchar) signalVRTimeOutConnect() "
        "signalVRBusy() signalVRTimeOutConfirm() signalVRNewRule(uchar,int,uchar,uchar) "
        "signalVRNewFilterMask(uchar,int,uint) signalVRNewHdr(uchar,int,QString) "
        "signalVRNewFilterStr(uchar,QString) signalVRNewPortSpeed(uchar,uint) "
        "signalVRUpdateVRData() signalVRConnectionProgress(int) signalVRCloseProgress() "
        "signalVRPortView(uchar) signalVRNewPortName(bool,uchar,QString) "
        "signalVRSaveEepromOk() signalVRSaveEepromError() signalVRSendDisconnect() "
        "signalVRVersion(uint,uint) signalVRErrorsCode(uint,uint) signalVRMode(QString) "
        "signalVRFwPacket(uint) signalVRReadyFirmwareUpdate() signalVRFwError(uint) "
        "signalVRFwOk() signalVRStatusErrors(uint,uint,uint,uint,uint,uint) "
        "signalVRSerial(QByteArray*) signalVRSetPasswordAnswer(bool) "
        "signalVRLockStatus(bool,uchar) signalVRSendPassword(QString) "
        "signalCommandCRSError() signalVRUsedFlashBank(uint) signalVRAISMessage(QString) "
        "signalVRAISPosition(QString) slot_ReadyRead() slot_send_timer() "
        "slot_connect_timer() slot_confirm_timer() slot_VRNMEA(QString)");
    QStringList names;
    const QMetaObject &link = NmeaSerialPort::staticMetaObject;
    for (int i = link.methodOffset(); i < link.methodCount(); ++i)
        names += QString::fromLatin1(link.method(i).methodSignature());
    // The slots stand behind all signals.
    QCOMPARE(names, expected.split(' '));
}
void tst_Dispatch::sentences()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QStringList>("expected");
    configurationSentences();
    reportSentences();
    unknownSentences();
}

void tst_Dispatch::configurationSentences()
{
    row("SPD: port and speed, literal", "$VRSPD,3,9600*7F\r\n", {"VRNewPortSpeed(3, 9600)"});
    row("SPD: highest of both", checkedLine("$VRSPD,11,115200"), {"VRNewPortSpeed(11, 115200)"});
    row("SPD: a speed that no port has is handed on", checkedLine("$VRSPD,3,1234"),
        {"VRNewPortSpeed(3, 1234)"});
    row("SPD: no second field", checkedLine("$VRSPD,3"), {});
    row("SPD: third field spoils the speed", checkedLine("$VRSPD,3,9600,1"),
        {"VRNewPortSpeed(3, 0)"});
    row("SPD: hexadecimal isn't decimal", checkedLine("$VRSPD,A,0x10"), {"VRNewPortSpeed(0, 0)"});
    row("SPD: white space around the numbers", checkedLine("$VRSPD, 3 , 9600 "),
        {"VRNewPortSpeed(3, 9600)"});
    row("SPD: no CR", "$VRSPD,3,9600*7F\n", {"VRNewPortSpeed(3, 9600)"});
    row("SPD: lower-case digits", "$VRSPD,3,9600*7f\r\n", {"VRNewPortSpeed(3, 9600)"});

    row("RUL: twelve words", checkedLine("$VRRUL,5,0," + twelveWords), rules(5, twelveWordValues));
    row("RUL: lower-case words", checkedLine("$VRRUL,5,0," + twelveWords.toLower()),
        rules(5, twelveWordValues));
    row("RUL: x is empty", checkedLine("$VRRUL,5,," + twelveWords), rules(5, twelveWordValues));
    row("RUL: x is any text", checkedLine("$VRRUL,5,what?," + twelveWords),
        rules(5, twelveWordValues));
    row("RUL: highest port", checkedLine("$VRRUL,11,1," + twelveWords),
        rules(11, twelveWordValues));
    row("RUL: digits behind the twelfth word don't matter",
        checkedLine("$VRRUL,5,0," + twelveWords + "FFFF"), rules(5, twelveWordValues));
    row("RUL: a word that isn't a number counts as 0",
        checkedLine("$VRRUL,5,0,12G4" + twelveWords.mid(4)),
        rules(5, QVector<Word>{{0, 0}} + twelveWordValues.mid(1)));
    row("RUL: one comma missing", checkedLine("$VRRUL,5," + twelveWords), {});
    row("RUL: both commas missing", checkedLine("$VRRUL,5" + twelveWords), {});
    row("RUL: eleven words and a half, the half counts as 0",
        checkedLine("$VRRUL,5,0," + twelveWords.left(46)), rules(5, twelveWordValues.mid(0, 11)));
    row("RUL: two words, the rest counts as 0", checkedLine("$VRRUL,5,0," + twelveWords.left(8)),
        rules(5, twelveWordValues.mid(0, 2)));
    // Four characters are taken at a time, whatever they are: here the last four are the second
    // digit of the checksum and CR LF, which is a number.
    const QByteArray tenAndHalf = "$VRRUL,5,0," + twelveWords.left(42);
    row("RUL: ten words and a half, the checksum's last digit is taken for a word",
        checkedLine(tenAndHalf),
        rules(5,
              twelveWordValues.mid(0, 10) + QVector<Word>{{0, 0}, {0, xorSum(tenAndHalf) & 0xf}}));
    row("RUL: no word at all", checkedLine("$VRRUL,5,0,"), rules(5, {}));

    row("FLT: lower half", checkedLine("$VRFLT,7,0,0," + sixMasks), masks(7, 0, sixMaskValues));
    row("FLT: upper half", checkedLine("$VRFLT,7,0,6," + sixMasks), masks(7, 6, sixMaskValues));
    row("FLT: lower-case digits", checkedLine("$VRFLT,7,0,0," + sixMasks.toLower()),
        masks(7, 0, sixMaskValues));
    row("FLT: first of 3 isn't ignored", checkedLine("$VRFLT,7,0,3," + sixMasks),
        masks(7, 3, sixMaskValues));
    row("FLT: x is empty", checkedLine("$VRFLT,7,,6," + sixMasks), masks(7, 6, sixMaskValues));
    row("FLT: x is any text", checkedLine("$VRFLT,7,xx,6," + sixMasks), masks(7, 6, sixMaskValues));
    row("FLT: no port's comma", checkedLine("$VRFLT,7"), {});
    row("FLT: one comma missing", checkedLine("$VRFLT,7,0"), {});
    row("FLT: two fields and the masks", checkedLine("$VRFLT,7,0," + sixMasks), {});
    row("FLT: a mask that isn't a number counts as 0",
        checkedLine("$VRFLT,7,0,0,0000000X" + sixMasks.mid(8)), masks(7, 0, sixMaskValues));
    row("FLT: five masks, the sixth counts as 0", checkedLine("$VRFLT,7,0,0," + sixMasks.left(40)),
        masks(7, 0, sixMaskValues.mid(0, 5)));
    row("FLT: no mask at all", checkedLine("$VRFLT,7,0,0,"), masks(7, 0, {}));

    const QStringList six{"GPS 1", "", "Gyro", "AIS", "a", "Radar/X-band"};
    row("PNM: lower half of the inputs", checkedLine("$VRPNM,I,0,GPS 1,,Gyro,AIS,a,Radar/X-band"),
        names("false", 0, six));
    row("PNM: upper half of the inputs", checkedLine("$VRPNM,I,6,GPS 1,,Gyro,AIS,a,Radar/X-band"),
        names("false", 6, six));
    row("PNM: lower half of the outputs", checkedLine("$VRPNM,O,0,GPS 1,,Gyro,AIS,a,Radar/X-band"),
        names("true", 0, six));
    row("PNM: upper half of the outputs", checkedLine("$VRPNM,O,6,GPS 1,,Gyro,AIS,a,Radar/X-band"),
        names("true", 6, six));
    row("PNM: all names empty", checkedLine("$VRPNM,I,0,,,,,,"),
        names("false", 0, {"", "", "", "", "", ""}));
    row("PNM: white space in a name stays", checkedLine("$VRPNM,I,0, a ,,,,, "),
        names("false", 0, {" a ", "", "", "", "", " "}));
    row("PNM: type in lower case", checkedLine("$VRPNM,o,0,a,b,c,d,e,f"), {});
    row("PNM: another type", checkedLine("$VRPNM,X,0,a,b,c,d,e,f"), {});
    row("PNM: no type", checkedLine("$VRPNM,,0,a,b,c,d,e,f"), {});
    row("PNM: type of two letters", checkedLine("$VRPNM,IO,0,a,b,c,d,e,f"), {});
    row("PNM: type only", checkedLine("$VRPNM,I"), {});
    row("PNM: type and comma only", checkedLine("$VRPNM,I,"), {});
    row("PNM: first without its comma", checkedLine("$VRPNM,I,0"), {});
    row("PNM: first of 3 is ignored as a whole", checkedLine("$VRPNM,I,3,a,b,c,d,e,f"), {});
    row("PNM: three names are reported, the rest is missing", checkedLine("$VRPNM,I,0,a,b,c"),
        names("false", 0, {"a", "b"}));
    row("PNM: five names", checkedLine("$VRPNM,O,6,a,b,c,d,e"),
        names("true", 6, {"a", "b", "c", "d"}));
    row("PNM: the sixth name goes up to the star", checkedLine("$VRPNM,O,6,a,b,c,d,e,f,g"),
        names("true", 6, {"a", "b", "c", "d", "e", "f,g"}));

    const QStringList twelve{"GP", "", "HE", "II", "", "", "", "", "", "", "", "AI"};
    row("HDC: twelve headers", checkedLine("$VRHDC,9,0,GP,,HE,II,,,,,,,,AI"), headers(9, twelve));
    row("HDC: all empty", checkedLine("$VRHDC,9,0,,,,,,,,,,,,"),
        headers(9, {"", "", "", "", "", "", "", "", "", "", "", ""}));
    row("HDC: x is any text", checkedLine("$VRHDC,9,x y,GP,,HE,II,,,,,,,,AI"), headers(9, twelve));
    row("HDC: three characters at channel 5 end it there",
        checkedLine("$VRHDC,9,0,GP,GP,GP,GP,GP,GPS,GP,GP,GP,GP,GP,GP"),
        headers(9, {"GP", "GP", "GP", "GP", "GP"}));
    row("HDC: one character at channel 0 ends it at once",
        checkedLine("$VRHDC,9,0,G,GP,GP,GP,GP,GP,GP,GP,GP,GP,GP,GP"), {});
    row("HDC: three characters at channel 11", checkedLine("$VRHDC,9,0,,,,,,,,,,,,GPS"),
        headers(9, {"", "", "", "", "", "", "", "", "", "", ""}));
    row("HDC: thirteen headers, the twelfth is too long",
        checkedLine("$VRHDC,9,0,,,,,,,,,,,,GP,II"),
        headers(9, {"", "", "", "", "", "", "", "", "", "", ""}));
    row("HDC: three headers", checkedLine("$VRHDC,9,0,GP,HE,II"), headers(9, {"GP", "HE"}));
    row("HDC: no header", checkedLine("$VRHDC,9,0,"), {});
    row("HDC: x without its comma", checkedLine("$VRHDC,9,0"), {});
    row("HDC: port without its comma", checkedLine("$VRHDC,9"), {});

    const QStringList eight{"RMC", "", "GGA", "VDM", "", "", "", "HDT"};
    row("FLS: eight formatters", checkedLine("$VRFLS,8,RMC,,GGA,VDM,,,,HDT"), formatters(8, eight));
    row("FLS: an empty field frees its place", checkedLine("$VRFLS,0,,,,,,,,"),
        formatters(0, {"", "", "", "", "", "", "", ""}));
    row("FLS: last eighth of the list", checkedLine("$VRFLS,24,RMC,,GGA,VDM,,,,HDT"),
        formatters(24, eight));
    row("FLS: two characters end it there", checkedLine("$VRFLS,8,RMC,GGA,HD,VDM,,,,"),
        formatters(8, {"RMC", "GGA"}));
    row("FLS: four characters end it there", checkedLine("$VRFLS,8,RMC,GGA,,GGAX,,,,"),
        formatters(8, {"RMC", "GGA", ""}));
    row("FLS: nine formatters, the eighth is too long", checkedLine("$VRFLS,8,,,,,,,,HDT,RMC"),
        formatters(8, {"", "", "", "", "", "", ""}));
    row("FLS: three formatters", checkedLine("$VRFLS,8,RMC,GGA,HDT"),
        formatters(8, {"RMC", "GGA"}));
    row("FLS: no formatter", checkedLine("$VRFLS,8,"), {});
    row("FLS: no comma", checkedLine("$VRFLS,8"), {});
}

void tst_Dispatch::reportSentences()
{
    row("VER: literal", "$VRVER,3.4*40\r\n", {"VRVersion(3, 4)"});
    row("VER: lower-case digits", "$VRVER,12.8*7c\r\n", {"VRVersion(12, 8)"});
    row("VER: two places", checkedLine("$VRVER,3.15"), {"VRVersion(3, 15)"});
    row("VER: no dot", checkedLine("$VRVER,3"), {});
    row("VER: two dots spoil the second number", checkedLine("$VRVER,3.4.5"), {"VRVersion(3, 0)"});
    row("VER: nothing but the dot", checkedLine("$VRVER,."), {"VRVersion(0, 0)"});

    row("MOD: text", checkedLine("$VRMOD,Normal1"), {"VRMode(\"Normal1\")"});
    row("MOD: empty text", checkedLine("$VRMOD,"), {"VRMode(\"\")"});
    row("MOD: commas belong to the text", checkedLine("$VRMOD,a,b"), {"VRMode(\"a,b\")"});

    row("ERR: code and fault", checkedLine("$VRERR,01F4,2c"), {"VRErrorsCode(500, 44)"});
    row("ERR: highest", checkedLine("$VRERR,FFFF,FF"), {"VRErrorsCode(65535, 255)"});
    row("ERR: character 11 isn't looked at", checkedLine("$VRERR,01F4;2C"),
        {"VRErrorsCode(500, 44)"});
    row("ERR: more behind the fault", checkedLine("$VRERR,01F4,2C,7"), {"VRErrorsCode(500, 44)"});
    row("ERR: code isn't a number", checkedLine("$VRERR,0xyz,2C"), {});
    row("ERR: fault isn't a number", checkedLine("$VRERR,01F4,zz"), {});
    row("ERR: fault of one digit runs into the star", checkedLine("$VRERR,01F4,2"), {});
    row("ERR: code of three digits", checkedLine("$VRERR,1F4,2C"), {});
    // The places are fixed, so the digits of the checksum stand where the fault should.
    row("ERR: no fault, the checksum is taken for it", checkedLine("$VRERR,01F4"),
        {call("VRErrorsCode", {"500", number(xorSum("$VRERR,01F4"))})});
    row("ERR: nothing", checkedLine("$VRERR,"), {});

    row("WBL: end of the data", "$VRWBL\r\n", {"VRUpdateVRData()"});
    row("WBL: without CR", "$VRWBL\n", {});
    row("WBL: with a checksum", checkedLine("$VRWBL"), {});
    row("WBL: with a field", "$VRWBL,\r\n", {});
    row("WBL: in lower case", "$VRwbl\r\n", {});
    row("SRO: saved", "$VRSRO\r\n", {"VRSaveEepromOk()"});
    row("SRO: without CR", "$VRSRO\n", {});
    row("SRO: with a checksum", checkedLine("$VRSRO"), {});
    row("SRE: not saved", "$VRSRE\r\n", {"VRSaveEepromError()"});
    row("SRE: without CR", "$VRSRE\n", {});
    row("SRE: with a checksum", checkedLine("$VRSRE"), {});
    row("FWR: ready for firmware", "$VRFWR\r\n", {"VRReadyFirmwareUpdate()"});
    row("FWR: without CR", "$VRFWR\n", {});
    row("FWR: with a checksum", checkedLine("$VRFWR"), {});
    row("FWO: firmware taken", "$VRFWO\r\n", {"VRFwOk()"});
    row("FWO: without CR", "$VRFWO\n", {});
    row("FWO: with a checksum", checkedLine("$VRFWO"), {});

    row("CNB: busy", "$VRCNB\r\n", {"VRBusy()"});
    row("CNB: without CR", "$VRCNB\n", {});
    row("CNB: with a checksum", checkedLine("$VRCNB"), {});
    row("CNB: with a field", "$VRCNB,\r\n", {});

    row("VVW: output port's channel", "$VRVVW,37\r\n", {"VRPortView(37)"});
    row("VVW: nothing", "$VRVVW,255\r\n", {"VRPortView(255)"});
    row("VVW: without CR", "$VRVVW,241\n", {"VRPortView(241)"});
    row("VVW: a checksum spoils the number", checkedLine("$VRVVW,3"), {"VRPortView(0)"});
    row("VVW: a wrong checksum isn't tested", wronglyCheckedLine("$VRVVW,3"), {"VRPortView(0)"});
    row("VVW: second field spoils the number", "$VRVVW,3,4\r\n", {"VRPortView(0)"});
    row("VVW: no comma", "$VRVVW\r\n", {});

    row("FWP: packet", checkedLine("$VRFWP,1023"), {"VRFwPacket(1023)"});
    row("FWP: second field spoils the number", checkedLine("$VRFWP,10,3"), {"VRFwPacket(0)"});
    row("FWE: error", checkedLine("$VRFWE,4"), {"VRFwError(4)"});
    row("FWE: second field spoils the number", checkedLine("$VRFWE,4,3"), {"VRFwError(0)"});

    row("STA: six numbers", checkedLine("$VRSTA,13,100000,2,3,4,5"),
        {"VRStatusErrors(13, 100000, 2, 3, 4, 5)"});
    row("STA: five numbers", checkedLine("$VRSTA,1,2,3,4,5"), {});
    row("STA: one number", checkedLine("$VRSTA,1"), {});
    row("STA: seven numbers spoil the sixth", checkedLine("$VRSTA,1,2,3,4,5,6,7"),
        {"VRStatusErrors(1, 2, 3, 4, 5, 0)"});
    row("STA: empty fields", checkedLine("$VRSTA,,,,,,"), {"VRStatusErrors(0, 0, 0, 0, 0, 0)"});

    row("SER: 32 digits", checkedLine("$VRSER," + chipDigits),
        {"VRSerial(00112233445566778899aabbccddeeff)"});
    row("SER: lower-case digits", checkedLine("$VRSER," + chipDigits.toLower()),
        {"VRSerial(00112233445566778899aabbccddeeff)"});
    row("SER: 30 digits", checkedLine("$VRSER," + chipDigits.left(30)), {});
    row("SER: 31 digits", checkedLine("$VRSER," + chipDigits.left(31)), {});
    row("SER: 33 digits", checkedLine("$VRSER," + chipDigits + "0"), {});
    row("SER: 34 digits", checkedLine("$VRSER," + chipDigits + "00"), {});
    row("SER: last pair isn't a number", checkedLine("$VRSER," + chipDigits.left(30) + "XX"), {});
    row("SER: first pair isn't a number", checkedLine("$VRSER,G0" + chipDigits.mid(2)), {});
    row("SER: no digits", checkedLine("$VRSER,"), {});

    row("PWS: set", checkedLine("$VRPWS,OK"), {"VRSetPasswordAnswer(true)"});
    row("PWS: refused", checkedLine("$VRPWS,ERROR"), {"VRSetPasswordAnswer(false)"});
    row("PWS: begins with OK", checkedLine("$VRPWS,OKAY"), {"VRSetPasswordAnswer(true)"});
    row("PWS: begins with ERROR", checkedLine("$VRPWS,ERRORS"), {"VRSetPasswordAnswer(false)"});
    row("PWS: lower case", checkedLine("$VRPWS,ok"), {});
    row("PWS: beginning of ERROR", checkedLine("$VRPWS,ERR"), {});
    row("PWS: another answer first", checkedLine("$VRPWS,NOT OK"), {});
    row("PWS: no answer", checkedLine("$VRPWS,"), {});

    row("LCK: no password, open", checkedLine("$VRLCK,0,5"), {"VRLockStatus(false, 5)"});
    row("LCK: password, locked", checkedLine("$VRLCK,1,0"), {"VRLockStatus(true, 0)"});
    row("LCK: password, level 5", checkedLine("$VRLCK,1,5"), {"VRLockStatus(true, 5)"});
    row("LCK: level 6", checkedLine("$VRLCK,1,6"), {});
    row("LCK: level 7", checkedLine("$VRLCK,1,7"), {});
    row("LCK: level 9", checkedLine("$VRLCK,1,9"), {});
    row("LCK: a letter for the level counts as 0", checkedLine("$VRLCK,1,x"),
        {"VRLockStatus(true, 0)"});
    row("LCK: level of two digits", checkedLine("$VRLCK,1,05"), {});
    row("LCK: level of 256", checkedLine("$VRLCK,1,256"), {});
    row("LCK: negative level", checkedLine("$VRLCK,1,-1"), {});
    row("LCK: level of 4294967295", checkedLine("$VRLCK,1,4294967295"), {});
    row("LCK: empty level", checkedLine("$VRLCK,1,"), {});
    row("LCK: no level", checkedLine("$VRLCK,1"), {});
    row("LCK: password flag of 2", checkedLine("$VRLCK,2,1"), {});
    row("LCK: password flag of two digits", checkedLine("$VRLCK,01,1"), {});
    row("LCK: empty password flag", checkedLine("$VRLCK,,1"), {});
    row("LCK: third field", checkedLine("$VRLCK,1,1,1"), {});

    row("PWV: password", checkedLine("$VRPWV,Secret7"), {"VRSendPassword(\"Secret7\")"});
    row("PWV: empty password", checkedLine("$VRPWV,"), {"VRSendPassword(\"\")"});
    row("PWV: the bare request is no answer", "$VRPWV\r\n", {});

    row("FBK: bank 0", checkedLine("$VRFBK,0"), {"VRUsedFlashBank(0)"});
    row("FBK: bank 1", checkedLine("$VRFBK,1"), {"VRUsedFlashBank(1)"});
    row("FBK: bank 2 is reported", checkedLine("$VRFBK,2"), {"VRUsedFlashBank(2)"});
    row("FBK: bank 3 isn't", checkedLine("$VRFBK,3"), {});

    const auto whole = [](const char *name, const QByteArray &line) -> QString {
        return QLatin1String(name) + '(' + LinkJournal::quoted(QString::fromUtf8(line)) + ')';
    };
    const QByteArray aim = checkedLine("$VRAIM,3,1,1,,A,13u?etPv2;0n:dDPwUM1U1Cb069D,0");
    const QByteArray aio = checkedLine("$VRAIO,3,1,1,,,13u?etPv2;0n:dDPwUM1U1Cb069D,0");
    const QByteArray aia = checkedLine("$VRAIA,3,133710,001,A,V,Tx malfunction");
    const QByteArray aip = checkedLine("$VRAIP,5,A,5957.9700,N,03019.1100,E");
    row("AIM: handed on whole", aim, {whole("VRAISMessage", aim)});
    row("AIO: handed on whole", aio, {whole("VRAISMessage", aio)});
    row("AIA: handed on whole", aia, {whole("VRAISMessage", aia)});
    row("AIP: handed on whole", aip, {whole("VRAISPosition", aip)});
    row("AIM: without CR", QByteArray(aim).replace("\r\n", "\n"),
        {whole("VRAISMessage", QByteArray(aim).replace("\r\n", "\n"))});
    row("AIM: empty field", checkedLine("$VRAIM,"),
        {whole("VRAISMessage", checkedLine("$VRAIM,"))});
    row("AIM: no comma", checkedLine("$VRAIM"), {});
    row("AIX: not of the family's four", checkedLine("$VRAIX,1"), {});
}

void tst_Dispatch::unknownSentences()
{
    row("unknown code", checkedLine("$VRXYZ,1,2,3"), {});
    row("unknown code with a wrong checksum", wronglyCheckedLine("$VRXYZ,1,2,3"), {});
    row("unknown bare code", "$VRXYZ\r\n", {});
    row("code in lower case", checkedLine("$VRspd,3,9600"), {});
    row("code with one letter more", checkedLine("$VRSPDX,3,9600"), {});
    row("code with one letter less", checkedLine("$VRSP,3,9600"), {});
    row("blank in place of the comma", checkedLine("$VRSPD 3,9600"), {});
    row("head alone where fields are due", checkedLine("$VRSPD"), {});
    row("head, wrong checksum, no comma", wronglyCheckedLine("$VRSPD"), {});
    row("comma in place of CR", "$VRFWO,\r\n", {});
    row("outbound query heard back", "$VRCNT\r\n", {});
    row("outbound confirm heard back", "$VRCNC\r\n", {});
    row("head of all, padded", "$VR\r\r\r\n", {});
}

void tst_Dispatch::sentencesBySlot()
{
    QFETCH(QByteArray, line);
    QFETCH(QStringList, expected);
    QCOMPARE(of(QString::fromUtf8(line)), expected);
}

void tst_Dispatch::sentencesByBytes()
{
    QFETCH(QByteArray, line);
    QFETCH(QStringList, expected);
    QVERIFY(line.size() <= 95);
    NmeaSerialPort link;
    const LinkJournal journal(&link);
    connect(&link, &NmeaSerialPort::signalVRNMEA_receive, &link, &NmeaSerialPort::slot_VRNMEA);
    link.receiveBytes(line.constData(), int(line.size()));
    QCOMPARE(journal.texts(), expected);
}
void tst_Dispatch::bareText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("expected");
    const auto textRow = [](const char *name, const QString &text, const QStringList &expected) {
        QTest::newRow(name) << text << expected;
    };
    textRow("empty", "", {});
    textRow("null", QString(), {});
    textRow("'$' alone", "$", {});
    textRow("head of all", "$VR", {});
    textRow("head of one letter", "$VRA", {});
    textRow("head of five characters", "$VRCN", {});
    textRow("head, nothing behind", "$VRWBL", {});
    textRow("head and CR", "$VRWBL\r", {});
    textRow("head, CR LF and more", "$VRWBL\r\nmore", {"VRUpdateVRData()"});
    textRow("saved, CR LF and more", "$VRSRO\r\nmore", {"VRSaveEepromOk()"});
    textRow("not saved, CR LF and more", "$VRSRE\r\nmore", {"VRSaveEepromError()"});
    textRow("ready, CR LF and more", "$VRFWR\r\nmore", {"VRReadyFirmwareUpdate()"});
    textRow("firmware taken, CR LF and more", "$VRFWO\r\nmore", {"VRFwOk()"});
    textRow("busy must be exact", "$VRCNB\r\nmore", {});
    textRow("busy without its end", "$VRCNB", {});
    textRow("head and comma", "$VRSPD,", {sumError});
    textRow("connect answer's head and comma", "$VRCNU,", {sumError});
    textRow("connect answer without its comma", "$VRCNU", {});
    textRow("view code's head and comma counts as 0", "$VRVVW,", {"VRPortView(0)"});
    textRow("checked sentence without CR LF", "$VRVER,3.4*40", {"VRVersion(3, 4)"});
    textRow("another head", "$GPGLL,3.4*40\r\n", {});
    textRow("leading blank", " $VRWBL\r\n", {});
    textRow("long mode text", "$VRMOD," + QString(2000, 'a') + "*6E\r\n",
            {"VRMode(\"" + QString(2000, 'a') + "\")"});
    textRow("letter outside ASCII in a name", QStringLiteral("$VRPNM,I,0,\u00e9,,,,,*C7\r\n"),
            {QStringLiteral("VRNewPortName(false, 0, \"\u00e9\")"), "VRNewPortName(false, 1, \"\")",
             "VRNewPortName(false, 2, \"\")", "VRNewPortName(false, 3, \"\")",
             "VRNewPortName(false, 4, \"\")", "VRNewPortName(false, 5, \"\")"});
}

void tst_Dispatch::bareText()
{
    QFETCH(QString, text);
    QFETCH(QStringList, expected);
    QCOMPARE(of(text), expected);
}
QTEST_APPLESS_MAIN(tst_Dispatch)
#include "tst_dispatch.moc"
