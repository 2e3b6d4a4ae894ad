#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""include/vyx/video.h quotes every message that the library can leave, and no other."""

import re
import unittest
from pathlib import Path

TOP = Path(__file__).resolve().parents[2]
TEXT = r'"(?:[^"\\]|\\.)*"'


def messages_of(source):
    constants = dict(re.findall(rf"constexpr char (\w+)\[\] =\s*({TEXT});", source))
    calls = re.findall(rf"\bset_error\(\s*[\w.>-]+,\s*((?:{TEXT}\s*)+)((?:,\s*\w+)?)", source)
    if len(calls) != len(re.findall(r"\bset_error\((?!ErrorMessage)", source)):
        raise ValueError("a call of set_error that cannot be read")
    for literals, second in calls:
        message = "".join(text[1:-1] for text in re.findall(TEXT, literals))
        name = second.lstrip(", \n")
        if message == "%s":
            yield constants[name][1:-1]
        elif message.startswith("%s"):
            # Which of FFmpeg's calls failed is told to fail().
            for call in re.findall(rf"\bfail\(({TEXT})", source):
                yield call[1:-1] + message[2:]
        else:
            yield message


class Messages(unittest.TestCase):
    def test_the_header_quotes_them_all(self):
        said = set()
        for path in (TOP / "src/videoio").glob("*.cpp"):
            said |= set(messages_of(path.read_text(encoding="utf-8")))
        header = (TOP / "include/vyx/video.h").read_text(encoding="utf-8")
        quoted = {text[1:-1] for text in re.findall(rf"^     ({TEXT})", header, re.M)}
        self.assertGreater(len(said), 25)
        self.assertEqual(said - quoted, set(), "not in the header")
        self.assertEqual(quoted - said, set(), "nobody says so")


if __name__ == "__main__":
    unittest.main()
