// SPDX-License-Identifier: MIT
#ifndef LXDOC_TESTS_ARCHIVEMAKER_H
#define LXDOC_TESTS_ARCHIVEMAKER_H

// Builds test archives with Python's zipfile and tarfile modules (and the zip
// command for real encryption), so every hostile entry is made on the spot
// instead of being kept as an opaque binary. One recipe name per archive.

#include <QProcess>
#include <QStandardPaths>
#include <QString>
#include <QStringList>

namespace archivemaker {

// argv: recipe, output path, sentinel folder (absolute), victim file (absolute).
inline const char *script()
{
    return R"PY(
import io, os, subprocess, sys, tarfile, tempfile, zipfile, zlib
recipe, out, sentinel, victim = sys.argv[1:5]
MANIFEST = ('<?xml version="1.0" encoding="UTF-8"?>\n<manifest identifier="lzn" version="6.0.0">'
            '<resource identifier="pages"><file href="page1.svg"/></resource>'
            '<resource identifier="records"/><resource identifier="images"/><resource identifier="sounds"/>'
            '<resource identifier="flashes"/><resource identifier="avmedia"/>'
            '<resource identifier="fillblocks"/><resource identifier="attachments"/></manifest>\n')
PAGE = '<svg width="1024" height="768"><title>Sums</title></svg>\n'
LESSON = [('manifest.xml', MANIFEST), ('page1.svg', PAGE), ('images/a.png', b'\x89PNG\r\n\x1a\n')]

def zipped(entries, compression=zipfile.ZIP_DEFLATED):
    buf = io.BytesIO()
    with zipfile.ZipFile(buf, 'w', compression) as z:
        for name, data in entries:
            z.writestr(name, data)
    return buf.getvalue()

def unix(name, mode, data=''):
    info = zipfile.ZipInfo(name)
    info.create_system = 3
    info.external_attr = mode << 16
    return info, data

def patch_names(blob, placeholder, name_bytes):
    return blob.replace(placeholder, name_bytes)

def tarred(add):
    buf = io.BytesIO()
    with tarfile.open(fileobj=buf, mode='w') as t:
        add(t)
    return buf.getvalue()

def tar_add(t, name, data=b'', **kw):
    info = tarfile.TarInfo(name)
    for k, v in kw.items():
        setattr(info, k, v)
    info.size = len(data) if info.type in (tarfile.REGTYPE, tarfile.AREGTYPE) else 0
    t.addfile(info, io.BytesIO(data) if info.size else None)

def bomb(size):
    # One entry of zeros, deflated in chunks so the maker stays small.
    comp = zlib.compressobj(9, zlib.DEFLATED, -15)
    chunk = bytes(1 << 20)
    parts = [comp.compress(chunk) for _ in range(size >> 20)]
    parts.append(comp.flush())
    data = b''.join(parts)
    crc = 0
    for _ in range(size >> 20):
        crc = zlib.crc32(chunk, crc)
    return data, crc

def raw_zip(name, payload, crc, size, flags=0, method=8):
    import struct
    n = name.encode()
    local = struct.pack('<IHHHHHIIIHH', 0x04034b50, 20, flags, method, 0, 0, crc, len(payload), size, len(n), 0) + n
    central = struct.pack('<IHHHHHHIIIHHHHHII', 0x02014b50, 20, 20, flags, method, 0, 0, crc, len(payload), size,
                          len(n), 0, 0, 0, 0, 0, 0) + n
    body = local + payload
    end = struct.pack('<IHHHHIIH', 0x06054b50, 0, 0, 1, 1, len(central), len(body), 0)
    return body + central + end

r = recipe
if r == 'lesson':
    blob = zipped(LESSON)
elif r == 'utf8-names':
    blob = zipped(LESSON + [('images/Größe_αβ_é.png', b'png')])
elif r in ('cp437-names', 'latin1-names'):
    raw = 'images/Gr\u00f6\u00dfe.png'.encode('cp437' if r == 'cp437-names' else 'latin-1')
    placeholder = b'images/' + b'Q' * (len(raw) - 7)
    blob = patch_names(zipped(LESSON + [(placeholder.decode(), b'png')]), placeholder, raw)
elif r == 'infozip-latin1':
    # Info-ZIP's zip in the C locale stores a Latin-1 name's bytes as they are.
    with tempfile.TemporaryDirectory() as d:
        for name, data in LESSON:
            p = os.path.join(d, name)
            os.makedirs(os.path.dirname(p), exist_ok=True)
            open(p, 'wb').write(data.encode() if isinstance(data, str) else data)
        open(os.path.join(d.encode(), b'images', b'caf\xe9.png'), 'wb').write(b'png')
        z = os.path.join(d, 'out.zip')
        env = dict(os.environ, LC_ALL='C', LANG='C')
        subprocess.run(['zip', '-q', '-r', z, 'manifest.xml', 'page1.svg', 'images'], cwd=d, check=True, env=env)
        blob = open(z, 'rb').read()
elif r == 'setuid-exec':
    blob = zipped(LESSON + [unix('images/run.sh', 0o107777, '#!/bin/sh\n'), unix('images/bin/', 0o46777)])
elif r == 'dotdot':
    blob = zipped(LESSON + [('../escape.txt', 'escaped')])
elif r == 'dotdot-deep':
    blob = zipped(LESSON + [('images/../../../escape.txt', 'escaped')])
elif r == 'dotdot-sentinel':
    blob = zipped(LESSON + [('../../../../' * 8 + sentinel.lstrip('/') + '/dotdot.txt', 'escaped')])
elif r == 'absolute':
    blob = zipped(LESSON + [(sentinel + '/absolute.txt', 'escaped')])
elif r == 'symlink-out':
    blob = zipped(LESSON + [unix('images/link', 0o120777, sentinel), ('images/link/through.txt', 'escaped')])
elif r == 'symlink-relative':
    blob = zipped(LESSON + [unix('up', 0o120777, '../../../../../../../../..' + sentinel)])
elif r == 'symlink-manifest':
    blob = zipped([unix('manifest.xml', 0o120777, victim), ('page1.svg', PAGE)])
elif r == 'char-device':
    blob = zipped(LESSON + [unix('images/dev', 0o020644, '')])
elif r == 'fifo':
    blob = zipped(LESSON + [unix('images/pipe', 0o010644, '')])
elif r == 'tar-hardlink':
    blob = tarred(lambda t: (tar_add(t, 'manifest.xml', MANIFEST.encode()),
                             tar_add(t, 'images/hard', type=tarfile.LNKTYPE, linkname=victim),
                             tar_add(t, 'images/hard', b'overwritten')))
elif r == 'tar-symlink':
    blob = tarred(lambda t: (tar_add(t, 'manifest.xml', MANIFEST.encode()),
                             tar_add(t, 'images', type=tarfile.SYMTYPE, linkname=sentinel),
                             tar_add(t, 'images/through.txt', b'escaped')))
elif r == 'tar-device':
    blob = tarred(lambda t: (tar_add(t, 'manifest.xml', MANIFEST.encode()),
                             tar_add(t, 'null', type=tarfile.CHRTYPE, devmajor=1, devminor=3)))
elif r == 'duplicate':
    blob = zipped(LESSON + [('manifest.xml', '<manifest identifier="evil"/>')])
elif r == 'file-and-folder':
    blob = zipped(LESSON + [('page1.svg/inner.txt', 'x')])
elif r == 'bomb':
    data, crc = bomb(256 << 20)
    blob = raw_zip('images/zeros.bin', data, crc, 256 << 20)
elif r == 'lying-size':
    data, crc = bomb(64 << 20)
    blob = raw_zip('images/zeros.bin', data, crc, 10)
elif r == 'truncated':
    blob = zipped(LESSON)
    blob = blob[:len(blob) // 2]
elif r == 'truncated-tail':
    blob = zipped(LESSON)[:-10]
elif r == 'corrupt-data':
    big = bytes((i * 7919) % 251 for i in range(20000))
    blob = bytearray(zipped([('manifest.xml', MANIFEST), ('images/b.bin', big)]))
    at = blob.find(b'images/b.bin') + 40
    for i in range(at, at + 64):
        blob[i] ^= 0x5a
    blob = bytes(blob)
elif r == 'bad-crc':
    payload = b'<svg/>'
    blob = raw_zip('page1.svg', payload, 0x12345678, len(payload), method=0)
elif r == 'not-zip':
    blob = b'This is a text file someone renamed.\n' * 20
elif r == 'empty':
    blob = b''
elif r == 'flagged-encrypted':
    payload = MANIFEST.encode()
    blob = raw_zip('manifest.xml', payload, zlib.crc32(payload), len(payload), flags=1, method=0)
elif r == 'encrypted':
    with tempfile.TemporaryDirectory() as d:
        for name, data in LESSON:
            p = os.path.join(d, name)
            os.makedirs(os.path.dirname(p), exist_ok=True)
            open(p, 'wb').write(data.encode() if isinstance(data, str) else data)
        z = os.path.join(d, 'out.zip')
        subprocess.run(['zip', '-q', '-r', '-P', 'secret', z, 'manifest.xml', 'page1.svg', 'images'], cwd=d, check=True)
        blob = open(z, 'rb').read()
elif r == 'long-name':
    blob = zipped(LESSON + [('images/' + 'n' * 300 + '.png', 'x')])
else:
    sys.exit('unknown recipe ' + r)
open(out, 'wb').write(blob)
)PY";
}

// Empty when made; otherwise why not.
inline QString make(const QString &recipe, const QString &out, const QString &sentinel, const QString &victim)
{
    const QString python = QStandardPaths::findExecutable(QStringLiteral("python3"));
    if (python.isEmpty())
        return QStringLiteral("python3 is not installed");
    QProcess process;
    process.start(python, {QStringLiteral("-c"), QString::fromUtf8(script()), recipe, out, sentinel, victim});
    if (!process.waitForFinished(120000) || process.exitStatus() != QProcess::NormalExit
        || process.exitCode() != 0)
        return QStringLiteral("python3 failed: ") + QString::fromLocal8Bit(process.readAllStandardError());
    return QString();
}

} // namespace archivemaker

#endif
