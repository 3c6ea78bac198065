"""What the permission dialog must say, by language identifier; written down apart from the program's resources."""

YES, NO, TITLE, MESSAGE, YES_TO_ALL = 103, 104, 105, 106, 107

TEXTS = {
    0x0407: {  # German
        YES: "&Ja", NO: "&Nein", TITLE: "Morvane Crash-Reporter", YES_TO_ALL: "Ja zu &Allem",
        MESSAGE: "Ein Crash wurde entdeckt, und ein Bericht erstellt.\n"
                 "Dieser Bericht enthält Informationen über den Zeitpunkt, als der Crash passiert ist, und wird den "
                 "Entwicklern helfen, das Problem zu beheben.\n\n\nMöchtet Ihr diesen Bericht senden?"},
    0x0409: {  # English (United States)
        YES: "&Yes", NO: "&No", TITLE: "Morvane Crash Reporter", YES_TO_ALL: "Yes To &All",
        MESSAGE: "A crash has been detected and a report has been generated.\n"
                 "This report contains information from the time of the crash and will help developers fix the "
                 "issue.\n\nWould you like to submit this report?"},
    0x040a: {  # Spanish
        YES: "&Sí", NO: "&No", TITLE: "Informe de problema a Morvane", YES_TO_ALL: "Sí a &todo",
        MESSAGE: "Se ha detectado un problema y se ha generado un informe.\n"
                 "El informe contiene datos sobre el momento en el que ha surguido el problema y nos ayudará a "
                 "solucionar el inconveniente.\n\n\n¿Quieres enviar el informe del problema?"},
    0x040c: {  # French
        YES: "&Oui", NO: "&Non", TITLE: "Rapport d'incident de Morvane", YES_TO_ALL: "Oui à &tout",
        MESSAGE: "Un incident a été détecté et un rapport a été généré.\n"
                 "Ce rapport contient des informations sur le moment du crash, et aidera les développeurs à résoudre "
                 "ce problème.\n\n\nSouhaitez-vous envoyer ce rapport?"},
    0x0410: {  # Italian
        YES: "&Sì", NO: "&No", TITLE: "Rapporto di crash Morvane", YES_TO_ALL: "Si (per &tutti)",
        MESSAGE: "È stato individuato un crash. Un rapporto è stato generato.\n"
                 "Questo rapporto contiene informazioni raccolte al momento del crash ed aiuterà gli sviluppatori a "
                 "correggere il problema.\n\n\nVuoi inviare il rapporto?"},
    0x0411: {  # Japanese
        YES: "確定", NO: "取消", TITLE: "Morvane クラッシュレポート", YES_TO_ALL: "全て確定",
        MESSAGE: "クラッシュが発生したため、レポートが生成されました。\n本レポートには、開発者が当該現象を修正するために必要なクラッシュ発生時の状況が記録されています。\n\n\nレポートを送信しますか？"},
    0x0412: {  # Korean
        YES: "예", NO: "아니오", TITLE: "Morvane 크래시 리포터", YES_TO_ALL: "모두 예",
        MESSAGE: "크래시가 감지되었고 리포트가 작성되었습니다.\n이 리포트는 크래시 발생 시간과 개발자가 이슈를 수정하기에 도움을 줄 수 있는 정보를 포함하고 있습니다.\n\n\n"
                 "이 리포트를 제출하시겠습니까?"},
    0x0415: {  # Polish
        YES: "&Tak", NO: "&Nie", TITLE: "Raport błędu Morvane", YES_TO_ALL: "Tak dla &wszystkich",
        MESSAGE: "Wystąpił błąd i został stworzony raport dotyczący tego błędu.\n"
                 "Ten raport zawiera inforamcje o czasie, w którym wystąpił błąd. Pomoże to deweloperom w naprawieniu "
                 "błędu.\n\n\nCzy chcesz wysłać raport?"},
    0x0416: {  # Portuguese (Brazil)
        YES: "&Sim", NO: "&Não", TITLE: "Morvane Relatório de Erro", YES_TO_ALL: "Sim para &tudo",
        MESSAGE: "Um erro foi detectado e um relatório foi gerado.\n"
                 "Este relatório contém informações do momento do erro e irá ajudar os desenvolvedores solucionar o "
                 "problema.\n\n\nVocê gostaria de enviar este relatório?"},
    0x0419: {  # Russian
        YES: "&Да", NO: "&Нет", TITLE: "Генератор отчетов Morvane", YES_TO_ALL: "Да для &всех",
        MESSAGE: "Обнаружен сбой! Был составлен отчет об ошибке.\n"
                 "Данный отчет содержит информацию необходимую разработчикам для устранения подобных сбоев.\n\n\n"
                 "Отправить отчет?"},
    0x0804: {  # Chinese (Simplified)
        YES: "确认", NO: "取消", TITLE: "Morvane崩溃报告", YES_TO_ALL: "全部确认",
        MESSAGE: "已发现崩溃并生成一个报告。\n报告包括崩溃时的信息，将帮助开发者解决这个问题。\n\n\n您要提交这份报告吗？"},
    0x7c04: {  # Chinese (Traditional)
        YES: "確認", NO: "取消", TITLE: "Morvane崩潰報告", YES_TO_ALL: "全部確認",
        MESSAGE: "已發現崩潰并生成一個報告。\n報告包含崩潰時的訊息，將幫助開發者解決這個問題。\n\n\n您要提交這份報告嗎？"},
}
