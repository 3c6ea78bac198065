"""The dialog's texts as they stand in the shipped file."""
from agent import EXECUTABLE
from permission_texts import TEXTS
from resources import STRING, Resources

STRING_BLOCK = 7  # identifiers 96 to 111


def test_texts_are_these():
    """The button for all, which is not shown, included."""
    resources = Resources(EXECUTABLE.read_bytes())
    languages = resources.languages(STRING, STRING_BLOCK)
    assert {language: resources.string_block(STRING_BLOCK, language) for language in languages} == TEXTS
