"""A desktop of its own (X server, window manager, accessibility bus) and programs that are driven on it as a user
drives them: controls are found by the names that screen readers say, and get real clicks and keys.

Needs Debian's xvfb, openbox, xdotool, imagemagick, dbus-daemon, at-spi2-core and python3-pyatspi; run it with the
system's python3. Keys are never sent to a window by its number: they go to the one that has the focus.
"""
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import threading
import time

TOOLS = ['Xvfb', 'openbox', 'xdotool', 'import', 'dbus-run-session']


def on_own_bus():
    """Starts this script again on a bus of its own, unless that was done."""
    if os.environ.get('DRIVEN_ON_OWN_BUS'):
        return
    missing = [tool for tool in TOOLS if shutil.which(tool) is None]
    if missing:
        sys.exit('skipped: not installed: ' + ', '.join(missing))
    os.environ['DRIVEN_ON_OWN_BUS'] = '1'
    os.execvp('dbus-run-session', ['dbus-run-session', '--', sys.executable, *sys.argv])


class Desk:
    """The desktop; `with Desk() as desk`."""

    def __init__(self, size='1600x1200'):
        self.size = size
        self.started = []
        self.folder = tempfile.mkdtemp(prefix='rasterkit-desk-')

    def __enter__(self):
        read, write = os.pipe()
        log = open(os.path.join(self.folder, 'log'), 'w')
        wanted = [os.environ['DRIVEN_DISPLAY']] if 'DRIVEN_DISPLAY' in os.environ else []
        self._start(['Xvfb', *wanted, '-noreset', '-displayfd', str(write), '-screen', '0', self.size + 'x24',
                     '-nolisten', 'tcp'], log, pass_fds=[write])
        os.close(write)
        number = ''
        while not number.endswith('\n'):
            part = os.read(read, 16).decode()
            if not part:
                break
            number += part
        number = number.strip()
        if not number:
            sys.exit('skipped: the X server did not start')
        os.environ.update(DISPLAY=':' + number, QT_QPA_PLATFORM='xcb', QT_LINUX_ACCESSIBILITY_ALWAYS_ON='1',
                          LC_ALL='C.UTF-8', XDG_CONFIG_HOME=self.folder, XDG_STATE_HOME=self.folder + '/state',
                          XDG_RUNTIME_DIR=self.folder, WAYLAND_DISPLAY='', NO_AT_BRIDGE='')
        self._start(['openbox'], log)
        self._start(['/usr/libexec/at-spi-bus-launcher', '--launch-immediately'], log)
        time.sleep(1)
        global pyatspi
        import pyatspi as module
        pyatspi = module
        return self

    def _start(self, command, log, **how):
        self.started.append(subprocess.Popen(command, stdout=log, stderr=log, **how))

    def __exit__(self, *_):
        for process in reversed(self.started):
            process.terminate()
            process.wait()
        shutil.rmtree(self.folder, ignore_errors=True)

    def photo(self, file):
        subprocess.run(['import', '-window', 'root', file], check=True)


def key(*keys):
    """Presses keys one after another in the window that has the focus: 'ctrl+e', 'Return'."""
    for name in keys:
        subprocess.run(['xdotool', 'key', '--clearmodifiers', name], check=True)
        time.sleep(0.15)


def write(text):
    subprocess.run(['xdotool', 'type', '--delay', '25', text], check=True)
    time.sleep(0.2)


def click(x, y, times=1):
    subprocess.run(['xdotool', 'mousemove', str(x), str(y), 'click', '--repeat', str(times), '--delay', '60', '1'],
                   check=True)
    time.sleep(0.2)


def drag(start, end, steps=12):
    subprocess.run(['xdotool', 'mousemove', *map(str, start), 'mousedown', '1'], check=True)
    for i in range(1, steps + 1):
        place = [round(a + (b - a) * i / steps) for a, b in zip(start, end)]
        subprocess.run(['xdotool', 'mousemove', *map(str, place)], check=True)
        time.sleep(0.02)
    subprocess.run(['xdotool', 'mouseup', '1'], check=True)
    time.sleep(0.2)


def middle(control, across=0.5, down=0.5):
    place = control.queryComponent().getExtents(0)
    return round(place.x + place.width * across), round(place.y + place.height * down)


def value_of(control):
    return control.queryValue().currentValue


def is_enabled(control):
    return control.getState().contains(pyatspi.STATE_ENABLED)


class Program:
    """A program with windows; killed at the end of the block if it still runs."""

    def __init__(self, command, **how):
        self.command = command
        self.process = subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, **how)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self.process.poll() is None:
            self.process.send_signal(signal.SIGTERM)
            try:
                self.process.wait(10)
            except subprocess.TimeoutExpired:
                self.process.kill()

    def application(self):
        for application in pyatspi.Registry.getDesktop(0):
            try:
                if application is not None and application.get_process_id() == self.process.pid:
                    return application
            except Exception:
                continue
        return None

    def windows(self):
        application = self.application()
        return [window for window in application or [] if window is not None]

    def window(self, part='', seconds=20):
        """The newest window whose title contains `part`."""
        end = time.time() + seconds
        while time.time() < end:
            for window in reversed(self.windows()):
                if part in window.name and window.getState().contains(pyatspi.STATE_SHOWING):
                    return window
            if self.process.poll() is not None:
                break
            time.sleep(0.1)
        raise AssertionError(f'no window "{part}" of {self.command}: {[w.name for w in self.windows()]}, '
                             f'exit code {self.process.poll()}')

    def titles(self):
        return [window.name for window in self.windows() if window.getState().contains(pyatspi.STATE_SHOWING)]

    def end(self, seconds=20):
        """Waits; returns exit code, output and errors."""
        output, errors = self.process.communicate(timeout=seconds)
        return self.process.returncode, output, errors


def all_of(root):
    yield root
    for child in root:
        if child is not None:
            yield from all_of(child)


def find(window, name, role=None, wants_shown=True):
    """The control that a screen reader calls `name`; of several the one that is shown."""
    matches = []
    for control in all_of(window):
        if control.name == name and role in (None, control.getRoleName()):
            matches.append(control)
    for control in matches:
        if control.getState().contains(pyatspi.STATE_SHOWING):
            return control
    if matches and not wants_shown:
        return matches[0]
    raise AssertionError(f'no control "{name}" ({role}) in "{window.name}"')


def press(window, name, role=None):
    click(*middle(find(window, name, role)))


def labels(window):
    return [control.name for control in all_of(window)
            if control.getRoleName() == 'label' and control.getState().contains(pyatspi.STATE_SHOWING)]


def tree(root, depth=0):
    """What a screen reader is told: role, name, description, value, states that matter."""
    lines = []
    for control in [root]:
        states = [name for state, name in ((pyatspi.STATE_CHECKED, 'checked'), (pyatspi.STATE_FOCUSED, 'focused'))
                  if control.getState().contains(state)]
        if not is_enabled(control):
            states.append('disabled')
        lines.append('  ' * depth + f'{control.getRoleName()} "{control.name}"'
                     + (f' - {control.description}' if control.description else '')
                     + (f' [{", ".join(states)}]' if states else ''))
        for child in control:
            if child is not None and child.getState().contains(pyatspi.STATE_SHOWING):
                lines += tree(child, depth + 1)
    return lines


class Latency:
    """The longest time that a window took to answer a question of a screen reader: its event loop was blocked."""

    def __init__(self, window):
        self.window = window
        self.longest = 0
        self.stopped = False
        self.thread = threading.Thread(target=self._run)

    def _run(self):
        while not self.stopped:
            start = time.time()
            try:
                self.window.clearCache()
                self.window.getState()
                self.window.childCount
                self.window.queryComponent().getExtents(0)
            except Exception:
                pass
            self.longest = max(self.longest, time.time() - start)
            time.sleep(0.005)

    def __enter__(self):
        self.thread.start()
        return self

    def __exit__(self, *_):
        self.stopped = True
        self.thread.join()
