#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Seeds for the fuzz targets that are easier to describe than to keep.

    makeseeds.py small   writes the small seeds kept in fuzz/corpus
    makeseeds.py big DIR writes large ones (100,000 attributes, 10,000 and
                         100,000 levels deep) into DIR, for a long run:
                         fuzz_loaders fuzz/corpus/loaders DIR/loaders ...
"""
import io
import os
import struct
import sys
import zipfile

HERE = os.path.dirname(os.path.abspath(__file__))
HEAD = '<?xml version="1.0" encoding="UTF-8"?>\n'


def nested(tag, depth, closed=True, inner=''):
    return '<%s>' % tag * depth + inner + ('</%s>' % tag * depth if closed else '')


def attributes(count):
    return ' '.join('a%d="%d"' % (i, i) for i in range(count))


def xml_seeds(deep, unclosed, count):
    return {
        'xmlstream/nested-%d.svg' % deep: HEAD + '<svg>' + nested('g', deep) + '</svg>',
        'xmlstream/unclosed-%d.xml' % unclosed: HEAD + nested('a', unclosed, closed=False),
        'xmlstream/attributes-%d.xml' % count: HEAD + '<a %s/>' % attributes(count),
        'loaders/page-nested-%d.svg' % deep: HEAD + '<svg width="1024" height="768"><g class="foreground">'
        + nested('g', deep, inner='<rect gid="1" x="1" y="1" width="2" height="2"/>') + '</g></svg>',
        'loaders/record-nested-%d.mtrec' % deep: HEAD + '<record class="page">'
        + nested('cmd', deep) + '</record>',
        'loaders/manifest-attributes-%d.xml' % count: HEAD + '<manifest identifier="lzn" %s>'
        '<resource identifier="pages"><file href="page1.svg"/></resource></manifest>' % attributes(count),
    }


def zip_bytes(entries):
    """entries: (name, data, external attributes)."""
    out = io.BytesIO()
    with zipfile.ZipFile(out, 'w', zipfile.ZIP_STORED) as archive:
        for name, data, attributes in entries:
            info = zipfile.ZipInfo(name)
            info.external_attr = attributes
            info.create_system = 3
            archive.writestr(info, data)
    return bytearray(out.getvalue())


def declared_sizes(data, size, compressed=None):
    """Rewrites the sizes every header of a one-entry archive declares."""
    local = data.find(b'PK\x03\x04')
    central = data.find(b'PK\x01\x02')
    for at in (local + 18, central + 20):
        struct.pack_into('<II', data, at, compressed if compressed is not None else size, size)
    return bytes(data)


def zip64_size(data, size):
    """Marks the entry's sizes as held in a ZIP64 field that claims size."""
    central = data.find(b'PK\x01\x02')
    name_length, extra_length = struct.unpack_from('<HH', data, central + 28)
    extra = struct.pack('<HHQQ', 1, 16, size, 8)
    struct.pack_into('<II', data, central + 20, 0xffffffff, 0xffffffff)
    struct.pack_into('<H', data, central + 30, len(extra) + extra_length)
    at = central + 46 + name_length
    data[at:at] = extra
    end = data.find(b'PK\x05\x06')
    size_at = end + 12
    struct.pack_into('<I', data, size_at, struct.unpack_from('<I', data, size_at)[0] + len(extra))
    return bytes(data)


def zip_seeds():
    file_mode = 0o100644 << 16
    link_mode = 0o120777 << 16
    page = b'<svg width="1024" height="768"/>\n'
    return {
        'unpack/file-url.zip': bytes(zip_bytes([('file:///tmp/lxfuzz-url.txt', b'x', file_mode)])),
        'unpack/backslash-dotdot.zip': bytes(zip_bytes([('..\\..\\lxfuzz-bs.txt', b'x', file_mode)])),
        'unpack/link-to-root.zip': bytes(zip_bytes([('images', b'/', link_mode),
                                                    ('images/x.png', b'png', file_mode)])),
        'unpack/huge-declared.zip': declared_sizes(zip_bytes([('page1.svg', page, file_mode)]), 0xfffffff0, len(page)),
        'unpack/zip64-huge.zip': zip64_size(zip_bytes([('page1.svg', page, file_mode)]), 1 << 40),
        'unpack/deep-folders.zip': bytes(zip_bytes([('d/' * 300 + 'x.txt', b'x', file_mode)])),
    }


def write(root, seeds):
    for name, content in seeds.items():
        path = os.path.join(root, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, 'wb') as out:
            out.write(content.encode() if isinstance(content, str) else content)


def main():
    if len(sys.argv) == 2 and sys.argv[1] == 'small':
        write(os.path.join(HERE, 'corpus'), dict(xml_seeds(500, 1000, 300), **zip_seeds()))
    elif len(sys.argv) == 3 and sys.argv[1] == 'big':
        write(sys.argv[2], xml_seeds(10000, 100000, 100000))
    else:
        sys.exit(__doc__)


if __name__ == '__main__':
    main()
