#!/usr/bin/python3
"""drive.py FOLDER_OF_RASTERKIT [SCENARIO...]: works with the windows of the tool as a user does, on a desktop of its
own, and checks the files on disk. Prints a line for each scenario; exit code 1 if one failed.

DRIVEN_PHOTOS=FOLDER keeps a picture of the screen and the screen reader's tree of each window that was met.
"""
import os
import shutil
import subprocess
import sys
import tempfile
import time
import traceback

import desk
from desk import (Desk, Latency, Program, click, find, is_enabled, key, labels, middle, on_own_bus, press, tree,
                  value_of, write)

SAMPLES = os.path.normpath(os.path.join(os.path.dirname(os.path.abspath(__file__)), '../../../samples'))
MIRROR, SAVE, SAVE_AS, SIZE, VALUES, TURN, GRAY = 'ctrl+m', 'ctrl+s', 'ctrl+shift+s', 'ctrl+h', 'ctrl+e', 'ctrl+r', 'ctrl+g'


class Tool:
    """The program under test, a folder for files, and the desktop."""

    def __init__(self, folder, screen):
        self.folder = os.path.abspath(folder)
        self.screen = screen
        self.files = tempfile.mkdtemp(prefix='rasterkit-driven-')
        self.photos = os.environ.get('DRIVEN_PHOTOS')
        self.seen = []

    def run(self, *arguments):
        environment = dict(os.environ, LD_LIBRARY_PATH=self.folder, XDG_STATE_HOME=self.files + '/state')
        return Program([self.program(), *arguments], env=environment)

    def program(self):
        for name in ('rasterkit', 'tool/rasterkit'):
            if os.path.isfile(os.path.join(self.folder, name)):
                return os.path.join(self.folder, name)
        sys.exit('there is no rasterkit in ' + self.folder)

    def info(self, file):
        import json
        environment = dict(os.environ, LD_LIBRARY_PATH=self.folder)
        answer = subprocess.run([self.program(), 'info', '--json', file], env=environment, capture_output=True,
                                text=True, check=True)
        return json.loads(answer.stdout.splitlines()[0])

    def copy(self, sample, name):
        target = os.path.join(self.files, name)
        os.makedirs(os.path.dirname(target), exist_ok=True)
        shutil.copy(os.path.join(SAMPLES, sample), target)
        return target

    def keep(self, name, window):
        if not self.photos:
            return
        os.makedirs(self.photos, exist_ok=True)
        self.screen.photo(os.path.join(self.photos, name + '.png'))
        with open(os.path.join(self.photos, name + '.txt'), 'w') as file:
            file.write('\n'.join(tree(window)) + '\n')


def expect(condition, text):
    if not condition:
        raise AssertionError(text)


def until(condition, text, seconds=20):
    end = time.time() + seconds
    while time.time() < end:
        try:
            if condition():
                return
        except Exception:
            pass
        time.sleep(0.1)
    raise AssertionError(text)


def read(file):
    with open(file, 'rb') as stream:
        return stream.read()


def facts(window):
    return ' | '.join(labels(window))


def edit(tool, file, *options):
    program = tool.run('edit', *options, file)
    window = program.window(os.path.basename(file))
    until(lambda: ' x ' in facts(window) or ' × ' in facts(window), 'the picture does not appear: ' + facts(window))
    return program, window


def answer(program, button, seconds=10):
    """Presses a button of the question that is open."""
    until(lambda: any(_has(window, button) for window in program.windows()), f'no question with "{button}": '
          + str(program.titles()), seconds)
    for window in reversed(program.windows()):
        if _has(window, button):
            text = facts(window)
            press(window, button)
            return text
    return ''


def _has(window, button):
    try:
        find(window, button)
        return True
    except AssertionError:
        return False


def named_file_is_written(tool):
    mine = tool.copy('plan-colored.bmp', 'mine/photo.bmp')
    precious = os.path.join(tool.files, 'mine/precious.bmp')
    os.makedirs(tool.files + '/other')
    with open(precious, 'w') as file:
        file.write('precious work')
    other = tool.files + '/other/precious.bmp'
    program, window = edit(tool, mine)
    with program:
        key(MIRROR)
        until(lambda: is_enabled(find(window, 'OK')), 'OK stays pale')
        tool.keep('editor', window)
        key(SAVE_AS)
        time.sleep(1.5)
        tool.keep('save-as', program.window())
        key('ctrl+a')
        write(other)
        key('Return')
        time.sleep(1.5)
        tool.keep('save-as-2', program.window())
        if not os.path.exists(other):
            answer(program, 'Save')
        until(lambda: os.path.exists(other), 'nothing was written')
        expect(read(precious) == b'precious work', 'another file was overwritten')
        expect(tool.info(other)['type'] == 'bmp', 'another type')
        expect(sorted(os.listdir(tool.files + '/mine')) == ['photo.bmp', 'precious.bmp'], 'other files appeared')


def ok_asks_and_writes(tool):
    file = tool.copy('plan-colored.bmp', 'photo.bmp')
    before = read(file)
    program, window = edit(tool, file)
    with program:
        expect(not is_enabled(find(window, 'OK')), 'OK is not pale although nothing was changed')
        key(MIRROR)
        until(lambda: is_enabled(find(window, 'OK')), 'OK stays pale')
        key('Return')
        text = answer(program, 'Replace')
        code, output, _ = program.end()
        expect(code == 0 and file in output, f'exit code {code}, {output}')
        expect('photo.bmp' in text, 'the question does not name the file: ' + text)
        expect(read(file) != before, 'the file is the old one')


def every_slider_acts(tool):
    file = tool.copy('orientation-1.jpg', 'a.jpg')
    with tool.run('adjust', file, tool.files + '/o.jpg', '--dialog') as program:
        window = program.window()
        time.sleep(1.5)
        tool.keep('values', window)
        dead = []
        for slider in [c for c in desk.all_of(window) if c.getRoleName() == 'slider'
                       and c.getState().contains(desk.pyatspi.STATE_SHOWING)]:
            before = screen_of_images(window)
            slider.queryComponent().grabFocus()
            key(*['Right'] * 25)
            time.sleep(1)
            if screen_of_images(window) == before:
                dead.append(slider.name)
        expect(not dead, 'dead: ' + ', '.join(dead))
        expect(_has(window, 'Reset'), 'no button "Reset"')


def screen_of_images(window):
    parts = []
    for control in desk.all_of(window):
        if control.getRoleName() == 'image' and control.getState().contains(desk.pyatspi.STATE_SHOWING):
            place = control.queryComponent().getExtents(0)
            if place.width > 100 and place.height > 100:
                shot = subprocess.run(['import', '-window', 'root', '-crop', f'{place.width - 8}x{place.height - 8}'
                                       f'+{place.x + 4}+{place.y + 4}', '+repage', '-depth', '8', 'rgb:-'],
                                      capture_output=True, check=True)
                parts.append(shot.stdout)
    expect(parts, 'the window shows no picture')
    return parts


def a_turn_counts_once(tool):
    file = tool.copy('plan-colored.bmp', 'photo.bmp')
    size = tool.info(file)
    program, window = edit(tool, file)
    with program:
        key(TURN)
        time.sleep(1)
        key(SIZE)
        chooser = program.window('Size')
        tool.keep('size', chooser)
        key('ctrl+a')
        write('100')
        key('Return')
        time.sleep(1)
        key(GRAY)
        time.sleep(1)
        key('Return')
        answer(program, 'Replace')
        code, _, errors = program.end()
        expect(code == 0, errors)
    after = tool.info(file)
    wanted = round(100 * size['width'] / size['height'])
    expect((after['width'], after['height']) == (100, wanted), f'{after["width"]} x {after["height"]}')


def a_mirrored_jpeg_stays_as_it_is(tool):
    file = tool.copy('orientation-1.jpg', 'a.jpg')
    before = read(file)
    program, window = edit(tool, file)
    with program:
        key(MIRROR)
        until(lambda: 'ossless' in facts(window), 'no word about lossless saving: ' + facts(window))
        key('Return')
        answer(program, 'Replace')
        code, _, errors = program.end()
        expect(code == 0, f'{code}: {errors}')
        expect('lost' not in errors, errors)
    after = read(file)
    expect(after != before, 'nothing was written')
    expect(len(after) < 1.1 * len(before), f'{len(before)} bytes became {len(after)}')
    wanted = subprocess.run(['jpegtran', '-flip', 'horizontal', '-perfect'], input=before, capture_output=True)
    if wanted.returncode == 0:
        ours, theirs = (subprocess.run(['djpeg', '-ppm'], input=data, capture_output=True, check=True).stdout
                        for data in (after, wanted.stdout))
        expect(ours == theirs, 'not the pixels of jpegtran')


def the_kind_is_kept(tool):
    file = tool.copy('orientation-1.jpg', 'a.jpeg')
    program, window = edit(tool, file)
    with program:
        key(MIRROR)
        time.sleep(1)
        key(SAVE_AS)
        time.sleep(1.5)
        chooser = program.window()
        texts = [c.queryText().getText(0, -1) for c in desk.all_of(chooser) if c.getRoleName() == 'text'
                 and c.getState().contains(desk.pyatspi.STATE_SHOWING)]
        boxes = [c.name for c in desk.all_of(chooser) if c.getRoleName() == 'combo box']
        expect(any(text.endswith('.jpeg') for text in texts), f'names {texts}, lists {boxes}')
        expect(not any('bitmap' in name.lower() for name in boxes), f'lists {boxes}')


def wrong_sizes_are_refused_in_the_window(tool):
    file = tool.copy('orientation-1.jpg', 'a.jpg')
    target = tool.files + '/o.jpg'
    with tool.run('resize', file, target, '--dialog') as program:
        window = program.window()
        for number in ('0', '999999999'):
            key('ctrl+a')
            write(number)
            key('Return')
            time.sleep(0.5)
            expect(program.process.poll() is None, number + ' closed the window')
            expect(not is_enabled(find(window, 'OK')), number + ': OK is not pale')
            expect('1000000' in facts(window), number + ': no reason: ' + facts(window))
            tool.keep('size-' + number, window)
        key('ctrl+a')
        write('96')
        key('Return')
        code, _, errors = program.end()
        expect(code == 0, errors)
    expect(tool.info(target)['width'] == 96, 'another size')


def keys_work_in_number_fields(tool):
    file = tool.copy('orientation-1.jpg', 'a.jpg')
    program, window = edit(tool, file)
    with program:
        field = next(c for c in desk.all_of(window) if c.getRoleName() in ('text', 'spin button')
                     and c.getState().contains(desk.pyatspi.STATE_SHOWING))
        click(*middle(field))
        key(VALUES)
        time.sleep(1)
        expect(len(program.titles()) == 2, f'focus in "{field.name}": windows {program.titles()}')


def work_is_not_lost(tool):
    file = tool.copy('orientation-1.jpg', 'a.jpg')
    program, window = edit(tool, file)
    with program:
        key('Escape')
        code, _, errors = program.end()
        expect(code == 1, f'Escape without work: {code}, {errors}')
    program, window = edit(tool, file)
    with program:
        key(MIRROR)
        time.sleep(1)
        key('Escape')
        text = answer(program, 'Cancel')
        expect(text, 'no question')
        expect(window.name in program.titles(), 'the window is gone')
        tool.keep('lose-work', window)
        key('Escape')
        answer(program, "Discard")
        program.end()


def a_crash_loses_nothing(tool):
    file = tool.copy('orientation-1.jpg', 'a.jpg')
    program, window = edit(tool, file)
    with program:
        key(MIRROR)
        time.sleep(1.5)
        program.process.kill()
        program.process.wait()
    program = tool.run('edit', file)
    with program:
        time.sleep(2)
        tool.keep('journal', program.window())
        answer(program, 'Take up')
        window = program.window('a.jpg')
        until(lambda: is_enabled(find(window, 'OK')), 'the steps are not there')


def another_program_changed_the_file(tool):
    file = tool.copy('plan-colored.bmp', 'photo.bmp')
    program, window = edit(tool, file)
    with program:
        key(MIRROR)
        time.sleep(1)
        shutil.copy(os.path.join(SAMPLES, 'plan.png'), file)
        changed = read(file)
        key('Return')
        text = answer(program, 'Cancel')
        expect('chang' in text, 'the question does not say so: ' + text)
        expect(read(file) == changed, 'the file was overwritten')


def a_failed_save_keeps_the_window(tool):
    file = tool.copy('plan-colored.bmp', 'sub/photo.bmp')
    program, window = edit(tool, file)
    with program:
        key(MIRROR)
        time.sleep(1)
        shutil.rmtree(os.path.dirname(file))
        key('Return')
        time.sleep(2)
        tool.keep('failed-save', program.window())
        expect(program.process.poll() is None, 'the window is gone')
        expect(window.name in program.titles(), 'the window is gone')


def write_pdf(file):
    """A page of 2 x 3 inches with a red rectangle."""
    content = b'0.8 0.1 0.2 rg 10 20 60 40 re f'
    parts = [b'<< /Type /Catalog /Pages 2 0 R >>', b'<< /Type /Pages /Kids [3 0 R] /Count 1 >>',
             b'<< /Type /Page /Parent 2 0 R /MediaBox [0 0 144 216] /Contents 4 0 R /Resources << >> >>',
             b'<< /Length %d >>\nstream\n%s\nendstream' % (len(content), content)]
    data, places = b'%PDF-1.4\n', []
    for number, part in enumerate(parts, 1):
        places.append(len(data))
        data += b'%d 0 obj\n%s\nendobj\n' % (number, part)
    start = len(data)
    data += b'xref\n0 5\n0000000000 65535 f \n' + b''.join(b'%010d 00000 n \n' % place for place in places)
    data += b'trailer << /Size 5 /Root 1 0 R >>\nstartxref\n%d\n%%%%EOF\n' % start
    with open(file, 'wb') as stream:
        stream.write(data)


def a_pdf_page_can_be_confirmed(tool):
    page = tool.files + '/page.pdf'
    write_pdf(page)
    program = tool.run('edit', page)
    with program:
        window = program.window('page')
        until(lambda: is_enabled(find(window, 'OK')), 'OK is pale: ' + facts(window))
        tool.keep('pdf', window)
        key('Return')
        code, output, errors = program.end()
        expect(code == 0 and output.strip(), f'{code}: {errors}')
        expect(tool.info(output.strip())['type'] == 'png', 'no PNG file')


def a_large_picture_answers(tool):
    """108 megapixels: how long the window does not answer."""
    file = tool.files + '/large.jpg'
    environment = dict(os.environ, LD_LIBRARY_PATH=tool.folder)
    width, height = os.environ.get('DRIVEN_LARGE', '12000x9000').split('x')
    subprocess.run([tool.program(), 'resize', os.path.join(SAMPLES, 'orientation-1.jpg'), file, '--size',
                    f'{width}x{height}'], env=environment, check=True)
    start = time.time()
    program = tool.run('edit', file)
    with program:
        window = program.window('large', 60)
        shown = time.time() - start
        until(lambda: width in facts(window), 'no picture', 60)
        ready = time.time() - start
        time.sleep(8)

        def peak():
            with open(f'/proc/{program.process.pid}/status') as status:
                return next(int(line.split()[1]) / 1024 for line in status if line.startswith('VmHWM'))
        said = [f'window after {shown:.1f} s, facts after {ready:.1f} s, peak {peak():.0f} MiB']
        worst = 0
        for name, command in (('mirror', MIRROR), ('turn', TURN), ('gray', GRAY), ('undo', 'ctrl+z')):
            window.queryComponent().grabFocus()
            with Latency(window) as latency:
                key(command)
                time.sleep(10)
            worst = max(worst, latency.longest)
            said.append(f'{name}: no answer for {1000 * latency.longest:.0f} ms')
        said.append(f'peak {peak():.0f} MiB')
        print('    ' + '; '.join(said))


SCENARIOS = [named_file_is_written, ok_asks_and_writes, every_slider_acts, a_turn_counts_once,
             a_mirrored_jpeg_stays_as_it_is, the_kind_is_kept, wrong_sizes_are_refused_in_the_window,
             keys_work_in_number_fields, work_is_not_lost, a_crash_loses_nothing, another_program_changed_the_file,
             a_failed_save_keeps_the_window, a_pdf_page_can_be_confirmed, a_large_picture_answers]


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    on_own_bus()
    wanted = sys.argv[2:]
    failed = 0
    with Desk() as screen:
        for scenario in SCENARIOS:
            if wanted and scenario.__name__ not in wanted:
                continue
            tool = Tool(sys.argv[1], screen)
            try:
                scenario(tool)
                print('ok     ', scenario.__name__, flush=True)
            except Exception as error:
                failed += 1
                print('FAILED ', scenario.__name__ + ':', error, flush=True)
                if tool.photos:
                    os.makedirs(tool.photos, exist_ok=True)
                    screen.photo(os.path.join(tool.photos, 'failed-' + scenario.__name__ + '.png'))
                    if not isinstance(error, AssertionError):
                        traceback.print_exc()
            shutil.rmtree(tool.files, ignore_errors=True)
    sys.exit(1 if failed else 0)


if __name__ == '__main__':
    main()
