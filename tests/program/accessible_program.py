#!/usr/bin/python3
"""What assistive technology sees of the program, at each scale:
dbus-run-session -- accessible_program.py FENNELBRIGHT"""
import os
import shutil
import subprocess
import sys
import tempfile
import time

scratch = tempfile.mkdtemp()
os.environ.update(HOME=scratch, QT_LINUX_ACCESSIBILITY_ALWAYS_ON='1')
for name in ('WAYLAND_DISPLAY', 'QT_QPA_PLATFORM', 'XAUTHORITY'):
    os.environ.pop(name, None)
server = subprocess.Popen(['Xvfb', '-noreset', '-displayfd', '1', '-screen', '0', '2000x2700x24'],
                          stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
os.environ['DISPLAY'] = ':' + server.stdout.readline().strip()
import pyatspi  # looks for the display

PRESSED = 'Pocket IE'
# Role, name, place on the screen in its pixels, text.
SEEN = [
    ('frame', None, (0, 0, 240, 320), None),
    ('button', 'OK', (203, 3, 34, 20), None),
    ('page tab', 'Pocket IE', (97, 273, 59, 19), None),
    ('button', 'Previous tabs', (212, 273, 14, 21), None),
    ('button', 'Next tabs', (226, 273, 14, 21), None),
    ('check box', 'Limit Pocket IE Cache', (6, 110, 142, 18), None),
    ('combo box', 'Limit Pocket IE Cache', (150, 110, 70, 20), '1024 kb'),
    ('text', 'Move AvantGo Cache', (6, 194, 160, 18), '\\Storage Card\\AvantGo\\'),
    ('scroll bar', 'Scroll the page', (223, 30, 13, 239), None),
    ('menu item', 'Apply', (77, 296, 40, 17), None),
]


def below(item):
    yield item
    for index in range(item.childCount):
        child = item.getChildAtIndex(index)
        if child is not None and child.getState().contains(pyatspi.STATE_VISIBLE):
            yield from below(child)


def role_of(item):
    """Older libraries name a button after how it is pressed."""
    return item.getRoleName().removeprefix('push ')


def find(role, name):
    """The object in view; None until it is there."""
    desktop = pyatspi.Registry.getDesktop(0)
    for index in range(desktop.childCount):
        program = desktop.getChildAtIndex(index)
        if program is not None and program.name == 'fennelbright':
            for item in below(program):
                if role_of(item) == role and name in (None, item.name):
                    return item
    return None


def wait_for(question, reason):
    for _ in range(200):
        answer = question()
        if answer:
            return answer
        time.sleep(0.05)
    sys.exit(reason)


def is_chosen():
    tab = find('page tab', PRESSED)
    return tab is not None and tab.getState().contains(pyatspi.STATE_SELECTED)


def look(scale):
    wait_for(lambda: find('page tab', PRESSED), 'no tabs').queryAction().doAction(0)
    wait_for(is_chosen, 'the tab is not chosen')
    for role, name, place, text in SEEN:
        item = wait_for(lambda: find(role, name), f'no {role} {name}')
        seen = tuple(item.queryComponent().getExtents(pyatspi.DESKTOP_COORDS))
        assert seen == tuple(scale * value for value in place), (scale, role, name, seen)
        middle = (seen[0] + seen[2] // 2, seen[1] + seen[3] // 2)
        assert item.queryComponent().contains(*middle, pyatspi.DESKTOP_COORDS), (scale, name)
        if text is not None:
            assert item.queryText().getText(0, -1) == text, (name, item.queryText().getText(0, -1))
    first = find('page tab', 'Clean Temp Files')
    assert not first.getState().contains(pyatspi.STATE_SELECTED)


try:
    device = os.path.join(scratch, 'device')
    subprocess.run([sys.argv[1], '--new-device', device], check=True, stdout=subprocess.DEVNULL)
    with open(os.path.join(scratch, 'known-leaks'), 'w', encoding='ascii') as leaks:
        leaks.write('leak:libdbus\n')
    os.environ['LSAN_OPTIONS'] = 'suppressions=' + leaks.name
    for scale in (1, 2, 5, 8):
        program = subprocess.Popen([sys.argv[1], '--device', device, '--scale', str(scale)])
        look(scale)
        program.terminate()
        assert program.wait() == 0, 'the program did not end well'
        wait_for(lambda: find('frame', None) is None, 'the program is still seen')
finally:
    server.terminate()
    server.wait()
    shutil.rmtree(scratch)
