#!/usr/bin/env python3
"""Kills a program while it saves rotations, again and again: the file must hold all of one save every time.

usage: kill_while_saving.py PROGRAM [TIMES]
"""
import pathlib
import random
import re
import subprocess
import sys
import tempfile
import time
import xml.etree.ElementTree

program, times = sys.argv[1], int(sys.argv[2]) if len(sys.argv) > 2 else 1000
torn = 0
saves = set()
with tempfile.TemporaryDirectory() as folder:
    path = pathlib.Path(folder, 'FerrowRcon.exe.maprotate')
    for _ in range(times):
        before = path.stat().st_ino if path.exists() else 0
        saver = subprocess.Popen([program, folder])
        while saver.poll() is None and (not path.exists() or path.stat().st_ino == before):
            time.sleep(0.001)
        time.sleep(random.uniform(0, 0.05))
        saver.kill()
        if saver.wait() != -9:
            sys.exit('the program ended by itself')
        try:
            generations = [entry.findtext('map') for entry in xml.etree.ElementTree.parse(path).iter('RotationInst')]
        except (xml.etree.ElementTree.ParseError, OSError):
            generations = []
        torn += len(generations) != 200 or len(set(generations)) != 1
        saves.update(generations)
    leftovers = [entry.name for entry in pathlib.Path(folder).glob('FerrowRcon.exe.maprotate.*')]
    nameless = [name for name in leftovers if not re.fullmatch(r'FerrowRcon\.exe\.maprotate\.[a-z0-9]{6}\.ferrow-part', name)]
print(f'{times} kills, {torn} torn files, {len(saves)} different saves seen, {len(leftovers)} passing files left, '
      f'{len(nameless)} of them under a name that could be a user\'s')
sys.exit(torn != 0 or len(saves) < 2 or len(nameless) != 0)
