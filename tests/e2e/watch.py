# SPDX-License-Identifier: MIT
"""What tests/support/gl_watch.c counts inside a player."""

import mmap
import os
import struct
import tempfile

LIBRARY = os.environ.get("VYX_GL_WATCH", "")
FIELDS = ("start_errors", "errors", "swaps", "captions", "question", "answer",
          "textures", "lists", "buffers", "framebuffers", "programs", "waits", "heap")  # fmt: skip
OBJECTS = FIELDS[6:11]


class Watch:
    def __init__(self):
        self.file = tempfile.NamedTemporaryFile(prefix="gl_watch")
        os.fchmod(self.file.fileno(), 0o666)  # the player may run as another user
        self.file.truncate(mmap.PAGESIZE)
        self.record = mmap.mmap(self.file.fileno(), mmap.PAGESIZE)

    def add_to(self, environment):
        """Has a player that starts with this environment counted."""
        environment["GL_WATCH"] = self.file.name
        environment["LD_PRELOAD"] = ":".join(filter(None, [environment.get("LD_PRELOAD"), LIBRARY]))

    def __getattr__(self, name):
        if name not in FIELDS:
            raise AttributeError(name)
        return struct.unpack_from("=I", self.record, 4 * FIELDS.index(name))[0]

    def ask(self):
        """Has GL's objects counted with the next picture; they are there once `answered`."""
        struct.pack_into("=I", self.record, 4 * FIELDS.index("question"), self.question + 1)

    def answered(self):
        return self.answer == self.question

    def objects(self):
        return {name: getattr(self, name) for name in OBJECTS}

    def close(self):
        self.record.close()
        self.file.close()
