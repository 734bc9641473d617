# SPDX-License-Identifier: MIT
# Where the oracle and the tool may differ, and why. An entry that excuses nothing is an error itself.
import fnmatch
from typing import NamedTuple


class Excuse(NamedTuple):
    paths: str  # a pattern of the file's path
    properties: str  # a pattern of the property
    reason: str

    def covers(self, disagreement):
        return fnmatch.fnmatchcase(disagreement.path, self.paths) and \
            fnmatch.fnmatchcase(disagreement.field, self.properties)


NO_CONVERTER = ("the value model has no string encoding for Macintosh Greek and Turkish, so that such a record counts "
                "as one that cannot be decoded")

EXCUSES = [
    Excuse("*/names/pair-1-6.ttf", "*", NO_CONVERTER),
    Excuse("*/names/script-6.ttf", "*", NO_CONVERTER),
    Excuse("*/names/script-35.ttf", "*", NO_CONVERTER),
]


def unexcused(disagreements, excuses=EXCUSES):
    """(disagreements that nothing excuses, excuses that excuse nothing)."""
    left = [found for found in disagreements if not any(excuse.covers(found) for excuse in excuses)]
    idle = [excuse for excuse in excuses if not any(excuse.covers(found) for found in disagreements)]
    return left, idle
