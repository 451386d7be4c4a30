#!/usr/bin/python3
"""Writes the summary of 500 servers, some with hostile names in each place, and looks at it in
Chromium."""

import csv
import json
import os
import pathlib
import re
import signal
import socket
import subprocess
import sys
import tempfile
import time
import urllib.error
import urllib.request

import yaml

ROLE = pathlib.Path(__file__).resolve().parent / 'roles/cnatool'
HOSTILE = ('<script>window.ran=1</script>', '"><img src=x onerror=window.ran=1>', '{{ 7 * 7 }}',
           '</details></table></main><h1>', '=cmd|"/c x"!A1', "'onfocus='window.ran=1", '&lt;b&gt;',
           '\x1b[2J\ud800\u202e', '@SUM(1)', '{% raw %}')
PLAY = """
- hosts: localhost
  gather_facts: false
  tasks:
    - ansible.builtin.template: {src: "%s/templates/{{ item }}.j2", dest: "{{ item }}"}
      loop: [summary.html, summary.csv]
      vars: {cnatool_fleet: "{{ lookup('file', 'fleet.json') | from_json }}"}
"""
PAINTED = "const painted = () => performance.getEntriesByName('first-contentful-paint');"
LOOK = PAINTED + """
const rows = [...document.querySelectorAll('#servers > tbody > tr')];
const shown = rows.filter(row => row.checkVisibility());
const style = (name, part) => getComputedStyle(document.querySelector(name))[part];
return {
    ran: window.ran, titles: document.querySelectorAll('h1').length,
    foreign: document.querySelectorAll('img, script:not(body > script:last-child), iframe').length,
    cells: rows.every(row => row.cells.length === 4), states: rows.map(row => row.className),
    names: rows.map(row => row.cells[1].textContent), texts: shown.map(row => row.textContent),
    said: document.querySelector('output').value, wide: document.documentElement.scrollWidth,
    time: painted()[0].startTime,
    sheet: style('#servers', 'backgroundColor'),
    inks: ['.CRITICAL b', '.UNKNOWN b', '.WARNING b', '.OK b', 'output', '.dim', 'body'].map(
        name => style(name, 'color'))};
"""


def audit(text, state):
    """What an audit says, with this text in each place."""
    bad = state == 'CRITICAL'
    storage = {'vendor': 'SOLVEIG', 'product': text, 'version': '1.0'}
    ports = [{'type': kind, 'function': '%d' % i, 'number': text, 'address': text, 'storage': storage,
              'checked_by': 25, 'allowed': not bad}
             for i, kind in enumerate(('iSCSI', 'iSCSI', 'FCoE', 'FCoE'))]
    texts = dict.fromkeys('serial vendor model address kind image place what do'.split(), text)
    controller = {**texts, 'selected': True, 'pci_ids': [text], 'ports': ports,
                  'versions': {'firmware': [text], 'bios': [text]}}
    found = {**texts, 'severity': 'warning', 'accepted': state == 'OK', 'code': 'no-storage'}
    sent = {**texts, 'sent': True, 'installed': [text]}
    return json.dumps({'format': 2, 'controllers': [controller] * 2, 'downloads': [sent],
                       'findings': [found]})


def servers(plugin):
    """The variables of 500 hosts; every tenth has a hostile text wherever a server has a say."""
    states = (['OK'] * 7 + ['WARNING', 'CRITICAL', 'UNKNOWN']) * 50
    found = {}
    for i, state in enumerate(states):
        text = HOSTILE[i // 10 % len(HOSTILE)] if i % 11 == 0 else 'NV4200A%d' % i
        run = {'rc': 4 if state == 'CRITICAL' else 0, 'end': 'now'}
        if state == 'UNKNOWN':
            run = {'msg': text}
        told = {'rc': 1, 'stdout': audit(text, state), 'skipped': state == 'UNKNOWN'}
        parts = {'server': 'rack-%d' % i, 'job': 'check', 'directory': '/kept', 'flash': '',
                 'differing': ''}
        found['rack-%d' % i] = {'cnatool_record': plugin.record(
            parts, plugin.outcome(run, {'stdout': '  RET_OK  0'}, {}, 900), plugin.audited(told, []),
            [0], ['error'])}
    return found


def write_summary(scratch):
    sys.path.insert(0, str(ROLE / 'filter_plugins'))
    sys.dont_write_bytecode = True
    import cnatool as plugin  # pylint: disable=import-outside-toplevel
    check_passing(plugin)
    hosts = servers(plugin)
    fleet = plugin.fleet(list(hosts), hosts, 'check', 'today', False)
    (scratch / 'fleet.json').write_text(json.dumps(fleet))
    (scratch / 'write.yml').write_text(PLAY % ROLE)
    subprocess.run(['ansible-playbook', '-i', 'localhost,', '-c', 'local', '-e',
                    'ansible_python_interpreter=/usr/bin/python3', 'write.yml'],
                   cwd=scratch, check=True, stdout=subprocess.DEVNULL,
                   env={'PATH': os.environ['PATH'], 'HOME': str(scratch), 'LC_ALL': 'C.UTF-8',
                        'ANSIBLE_REMOTE_TEMP': str(scratch / 'tmp'),
                        'ANSIBLE_FILTER_PLUGINS': str(ROLE / 'filter_plugins')})
    return fleet


def check_passing(plugin):
    """Only an audit that was done lets a flash begin, or one whose absence is accepted."""
    audits = (({'rc': 0, 'stdout': audit('x', 'OK')}, True), ({'unreachable': True}, False),
              ({'skipped': True}, False), ({'rc': 127}, False), ({'rc': 127}, True, 'no-audit'),
              ({'rc': 0, 'stdout': '{"format": 1}'}, False), ({'rc': 0, 'stdout': '[' * 9999}, False))
    parts = {'server': 'x', 'job': 'flash', 'directory': '', 'flash': '', 'differing': ''}
    for run, passes, *accepted in audits:
        known = plugin.record(parts, {'status': 0}, plugin.audited(run, accepted), [0], ['error'])
        assert known['passed'] is passes, run


def check_codes():
    """The role knows the audit's codes."""
    schema = json.loads((ROLE / '../../../../docs/cnatool-audit.schema.json').read_text())
    known = yaml.safe_load((ROLE / 'vars/main.yml').read_text())
    finding = schema['$defs']['finding']['properties']
    assert known['cnatool_findings'] == finding['code']['enum']
    assert known['cnatool_severities'] == finding['severity']['enum']


def check_files(scratch):
    assert (scratch / 'summary.html').stat().st_size <= 1000000
    with open(scratch / 'summary.csv', newline='', encoding='utf-8') as file:
        rows = list(csv.reader(file))
    assert len(rows) == 501 and {len(row) for row in rows} == {12}
    assert not [cell for row in rows for cell in row if cell[:1] in '=+-@\t\r' and cell]
    assert "'" + HOSTILE[4] in {cell for row in rows for cell in row}


def ask(base, method, path, body=None):
    data = None if body is None else json.dumps(body).encode()
    request = urllib.request.Request(base + path, method=method, data=data)
    try:
        with urllib.request.urlopen(request, timeout=60) as answer:
            return json.load(answer)['value']
    except urllib.error.HTTPError as error:
        raise RuntimeError(error.read().decode()) from error


def start_browser(scratch):
    """The driver's process, and the address of a session of a headless Chromium."""
    with socket.socket() as free:
        free.bind(('127.0.0.1', 0))
        port = free.getsockname()[1]
    base = 'http://127.0.0.1:%d' % port
    driver = subprocess.Popen(['chromedriver', '--port=%d' % port], start_new_session=True,
                              env=dict(os.environ, HOME=str(scratch)), stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL)
    for _ in range(100):
        try:
            ask(base, 'GET', '/status')
            break
        except OSError:
            time.sleep(0.1)
    arguments = ['--headless', '--no-sandbox', '--disable-gpu', '--disable-dev-shm-usage',
                 '--disable-quic', '--no-first-run', '--disable-background-networking',
                 '--disable-component-update', '--disable-sync',
                 '--user-data-dir=%s/profile' % scratch]
    wanted = {'capabilities': {'alwaysMatch': {'goog:chromeOptions': {'args': arguments}}}}
    return driver, base + '/session/' + ask(base, 'POST', '/session', wanted)['sessionId']


def execute(browser, script):
    return ask(browser, 'POST', '/execute/sync', {'script': script, 'args': []})


def wait_until_painted(browser):
    """A page that is loaded need not be painted yet: ten seconds at most."""
    for _ in range(100):
        if execute(browser, PAINTED + 'return painted().length;'):
            return
        time.sleep(0.1)
    raise RuntimeError('the page was not painted')


def look(browser, script='', page=None, width=1200, scheme='light'):
    """What the page shows behind the script; it is loaded anew where it is named."""
    for command, parameters in (
            ('setDeviceMetricsOverride', {'width': width, 'height': 900, 'deviceScaleFactor': 1,
                                          'mobile': False}),
            ('setEmulatedMedia', {'features': [{'name': 'prefers-color-scheme', 'value': scheme}]})):
        ask(browser, 'POST', '/goog/cdp/execute', {'cmd': 'Emulation.' + command, 'params': parameters})
    if page:
        ask(browser, 'POST', '/url', {'url': 'file://%s' % page})
        wait_until_painted(browser)
    return execute(browser, script + LOOK)


def contrast(one, other):
    """As accessibility guidelines define it, of two colours like rgb(1, 2, 3)."""
    def light(colour):
        parts = [int(part) / 255 for part in re.findall(r'\d+', colour)[:3]]
        linear = [part / 12.92 if part <= 0.04045 else ((part + 0.055) / 1.055) ** 2.4 for part in parts]
        return 0.2126 * linear[0] + 0.7152 * linear[1] + 0.0722 * linear[2]
    dark, bright = sorted((light(one), light(other)))
    return (bright + 0.05) / (dark + 0.05)


def check_page(browser, page, fleet):
    seen = look(browser, page=page)
    again = look(browser, page=page)
    assert min(seen['time'], again['time']) < 1000, seen['time']
    assert seen['ran'] is None and seen['foreign'] == 0 and seen['titles'] == 1 and seen['cells']
    assert seen['names'] == [server['server'] for server in fleet['servers']]
    assert seen['states'] == ['CRITICAL'] * 50 + ['UNKNOWN'] * 50 + ['WARNING'] * 50 + ['OK'] * 350
    assert seen['said'] == '500 of 500 servers shown'
    whole = ''.join(seen['texts'])
    for text in HOSTILE:
        assert ''.join(each if each.isprintable() else '?' for each in text) in whole, text
    dark = look(browser, page=page, scheme='dark')
    for each in seen, dark:
        for ink in each['inks']:
            assert contrast(ink, each['sheet']) >= 4.5, (ink, each['sheet'])
    assert contrast(seen['sheet'], dark['sheet']) > 10
    unfold = "document.querySelectorAll('summary').forEach(each => each.click());"
    assert look(browser, unfold, width=390)['wide'] <= 390


def check_filter(browser, page):
    look(browser, page=page)
    chosen = look(browser, "document.querySelector('[value=WARNING]').click();")
    assert chosen['said'] == '50 of 500 servers shown' and len(chosen['texts']) == 50
    typed = look(browser, "document.forms[0].text.value = 'RACK-127 no-storage';"
                          "document.forms[0].text.dispatchEvent(new Event('input', {bubbles: true}));")
    assert typed['said'] == '1 of 500 servers shown' and 'rack-127' in typed['texts'][0], typed['said']


def main():
    check_codes()
    with tempfile.TemporaryDirectory() as place:
        scratch = pathlib.Path(place)
        fleet = write_summary(scratch)
        check_files(scratch)
        driver, browser = start_browser(scratch)
        try:
            check_page(browser, scratch / 'summary.html', fleet)
            check_filter(browser, scratch / 'summary.html')
        finally:
            ask(browser, 'DELETE', '')
            os.killpg(driver.pid, signal.SIGTERM)
            driver.wait()


if __name__ == '__main__':
    main()
