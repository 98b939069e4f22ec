"""Names of people."""

from __future__ import annotations

from typing import Tuple


class PersonName(str):
    """A value of VR PN: a text, "DOE^JANE", whose parts have names.

    Up to three component groups stand beside each other, with "=" between them: alphabetic,
    ideographic and phonetic. The parts of the name are those of the first group that is not empty.
    """

    __slots__ = ()

    def _group(self, index: int) -> str:
        groups = self.split("=", 3)
        return groups[index] if index < len(groups) else ""

    @property
    def alphabetic(self) -> str:
        """The first component group."""
        return self._group(0)

    @property
    def ideographic(self) -> str:
        """The second component group."""
        return self._group(1)

    @property
    def phonetic(self) -> str:
        """The third component group."""
        return self._group(2)

    @property
    def components(self) -> Tuple[str, ...]:
        """The component groups, as many as there are."""
        return tuple(self.split("="))

    def _part(self, index: int) -> str:
        group = next((group for group in self.split("=") if group), "")
        parts = group.split("^")
        return parts[index].strip(" ") if index < len(parts) else ""

    @property
    def family_name(self) -> str:
        """The first part."""
        return self._part(0)

    @property
    def given_name(self) -> str:
        """The second part."""
        return self._part(1)

    @property
    def middle_name(self) -> str:
        """The third part."""
        return self._part(2)

    @property
    def name_prefix(self) -> str:
        """The fourth part."""
        return self._part(3)

    @property
    def name_suffix(self) -> str:
        """The fifth part."""
        return self._part(4)

    def family_comma_given(self) -> str:
        """ "DOE, JANE"."""
        return f"{self.family_name}, {self.given_name}"
