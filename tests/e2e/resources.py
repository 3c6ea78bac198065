"""Reads the resources of a Windows program: a tree of three levels (type, name, language) in the section .rsrc."""
import struct

STRING = 6


class Resources:
    def __init__(self, image):
        self._section, self._address = find_section(image, b".rsrc")

    def data(self, kind, name, language):
        offset = 0
        for identifier in (kind, name, language):
            offset = self._children(offset)[identifier] & 0x7FFFFFFF
        address, size = struct.unpack_from("<II", self._section, offset)
        return self._section[address - self._address:][:size]

    def languages(self, kind, name):
        offset = self._children(self._children(0)[kind] & 0x7FFFFFFF)[name] & 0x7FFFFFFF
        return set(self._children(offset))

    def string_block(self, block, language):
        """The strings of one block, by identifier."""
        data, strings, offset = self.data(STRING, block, language), {}, 0
        for identifier in range((block - 1) * 16, block * 16):
            length, = struct.unpack_from("<H", data, offset)
            if length:
                strings[identifier] = data[offset + 2:offset + 2 + 2 * length].decode("utf-16-le")
            offset += 2 + 2 * length
        assert not data[offset:].strip(b"\0")
        return strings

    def _children(self, offset):
        named, numbered = struct.unpack_from("<HH", self._section, offset + 12)
        return dict(struct.iter_unpack("<II", self._section[offset + 16:][:8 * (named + numbered)]))


def find_section(image, wanted):
    """Content and address of a section."""
    header, = struct.unpack_from("<I", image, 0x3C)
    count, optional_size = struct.unpack_from("<H12xH", image, header + 6)
    for number in range(count):
        name, _, address, size, start = struct.unpack_from("<8sIIII", image, header + 24 + optional_size + 40 * number)
        if name.rstrip(b"\0") == wanted:
            return image[start:start + size], address
    raise KeyError(wanted)
