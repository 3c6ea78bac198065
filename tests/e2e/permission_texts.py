"""What the permission dialog says, by language identifier: the program's own texts, as app/PermissionTexts.rc has them."""
import re

from wine import ROOT

YES, NO, TITLE, MESSAGE, YES_TO_ALL = "YES", "NO", "TITLE", "MESSAGE", "YES_TO_ALL"
TEXTS = {
    int(sub, 16) << 10 | int(primary, 16): {
        name: text.replace("\\n", "\n") for name, text in re.findall(r'PERMISSION_TEXT_(\w+) +"(.*)"', table)}
    for primary, sub, table in re.findall(r"LANGUAGE (\w+), (\w+)(.*?)END",
                                          (ROOT / "app" / "PermissionTexts.rc").read_text(encoding="utf-8"), re.S)}
