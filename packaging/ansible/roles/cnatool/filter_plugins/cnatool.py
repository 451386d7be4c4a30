"""What runs and audits have said, as records for the summary.

All of it is text of the servers, so nothing here trusts its form.
"""

import base64
import html
import json
import posixpath
import re

STATES = ['CRITICAL', 'UNKNOWN', 'WARNING', 'OK']
# Statuses that say what is wrong; any other but 0 says that there was no check.
JUDGED = {1, 2, 4, 10, 12, 13, 20, 22}
OWN_CODES = {'no-audit', 'audit-failed'}
SEVERITIES = ['error', 'warning', 'note']
NOT_BEGUN = 'not begun'
TIMEOUT_ENDED = {124, 137}
OUTPUT_NAMES = re.compile(r'FWtrace\.out.*|Servie_DLL\.log|local_hba_list\.out|'
                          r'.*hba_attributes\.out|.*target_mapping\.out')
FORMULA = '[=+@＝＋－＠-]'


def as_text(value):
    """Text that can be written as UTF-8."""
    return '' if value is None else str(value).encode('utf-8', 'replace').decode('utf-8')


def field(value):
    """Text for the summary: no server fills the page of a fleet or steers a terminal."""
    return ''.join(each if each.isprintable() else '?' for each in as_text(value)[:1000])


def run_text(run, said):
    """What a run has said: the file of a flash, or what the engine has kept."""
    if 'content' in said:
        return base64.b64decode(said['content']).decode('utf-8', 'replace')
    if 'end' not in run:
        return ''
    return (' '.join(map(as_text, run.get('cmd', []))) + '\n' + as_text(run.get('stdout'))
            + '\nStandard error:\n' + as_text(run.get('stderr')))


def names_of_statuses(listed):
    rows = re.findall(r'^ *(\w+) +(\d{1,3})$', as_text(listed.get('stdout')), re.MULTILINE)
    return {int(number): name for name, number in rows}


def outcome(run, listed, said, seconds):
    """How a run has ended. Only one that the engine saw end has an end time. `status` is null
    where there is none; 51 and the end by a signal have no name."""
    text = run_text(run, said)
    result = {'status': None, 'name': '',
              'commands': text.count('Success, flash command returned code')}
    last = listed if run.get('skipped') else run
    if last.get('unreachable'):
        return dict(result, answer='unreachable')
    if run.get('rc') in TIMEOUT_ENDED:
        return dict(result, answer='no status: ended after %s s' % seconds)
    if 'end' in run and isinstance(run.get('rc'), int):
        name = names_of_statuses(listed).get(run['rc'], '')
        return dict(result, status=run['rc'], name=name,
                    answer='%d %s' % (run['rc'], name or '(no name)'))
    reasons = [as_text(last.get(key)) for key in ('stderr', 'module_stderr', 'module_stdout', 'msg')]
    unseen = 'its end was not seen: ' if run.get('changed') else ''
    return dict(result, answer='no status: ' + unseen + field(' '.join(' '.join(reasons).split())))


def finding(code, what):
    return {'code': code, 'severity': 'error', 'accepted': False, 'place': '', 'what': what, 'do': ''}


def port_record(port):
    """A port, and in a word what the check made of it."""
    storage = port['storage']
    if port['checked_by'] is None:
        verdict = 'not checked'
    elif storage is None:
        verdict = 'no storage'
    else:
        verdict = 'allowed' if port['allowed'] is True else 'not allowed'
    named = [] if storage is None else [storage[key] for key in ('vendor', 'product', 'version')]
    return {'port': '%s/%s' % (field(port['function']), field(port['number'])),
            'type': field(port['type']), 'address': field(port['address']),
            'storage': ' '.join(filter(None, map(field, named))),
            'verdict': verdict, 'line': field(port['checked_by'])}


def controller_record(controller):
    versions = controller['versions']
    known = {key: field(controller[key]) for key in ('serial', 'vendor', 'model')}
    return {**known, 'selected': controller['selected'] is True,
            'pci_ids': list(map(field, controller['pci_ids'])),
            'versions': {kind: list(map(field, versions[kind])) for kind in ('firmware', 'bios')},
            'ports': list(map(port_record, controller['ports']))}


def download_record(download):
    known = {key: field(download[key]) for key in ('serial', 'address', 'kind')}
    return dict(known, installed=list(map(field, download['installed'])), sent=download['sent'] is True,
                image=posixpath.basename(field(download['image'])))


def finding_record(each):
    known = {key: field(each[key]) for key in ('code', 'severity', 'place', 'what', 'do')}
    if known['severity'] not in SEVERITIES:
        raise ValueError('severity %s' % known['severity'])
    return dict(known, accepted=each['accepted'] is True)


def audit_record(report):
    if report['format'] != 2:
        raise ValueError('format %s' % report['format'])
    return {'controllers': list(map(controller_record, report['controllers'])),
            'downloads': list(map(download_record, report['downloads'])),
            'findings': list(map(finding_record, report['findings']))}


def audited(run, accepted):
    """What the audit says, or a finding of the role's own in its place. `audit` is none where it was
    not asked for."""
    said = {'audit': 'none', 'controllers': [], 'downloads': [], 'findings': []}
    if run.get('skipped'):
        return said
    if run.get('rc') == 127:
        failure = finding('no-audit', 'the package on this server has no cnatool-audit.')
    else:
        try:
            if run.get('rc') not in (0, 1):
                raise ValueError(as_text(run.get('stderr') or run.get('msg')).strip())
            return dict(audit_record(json.loads(run['stdout'])), audit='done')
        except (AttributeError, KeyError, RecursionError, TypeError, ValueError) as error:
            failure = finding('audit-failed', 'cnatool-audit could not do its work: %s' % field(error))
    failure['accepted'] = failure['code'] in accepted
    return dict(said, audit='failed', findings=[failure])


def refused_codes(findings, wanted):
    """The codes of the findings that `wanted`, severities and codes, does not let pass."""
    return sorted({each['code'] for each in findings
                   if not each['accepted'] and (each['severity'] in wanted or each['code'] in wanted)})


def codes(findings):
    return ' '.join(sorted({each['code'] for each in findings if not each['accepted']})) or 'none'


def images_told(known):
    """The images of a flash, and the versions that the controllers have without them."""
    listed = ['%s: %s %s to %s' % (each['serial'], each['kind'],
                                   ' '.join(each['installed']) or 'unknown', each['image'])
              for each in known['downloads'] if each['sent']]
    if known['job'] == 'check' and not known['downloads']:
        return ''
    begin = {'carried out': 'Sent', 'failed': 'To be sent:'}.get(known['flash'], 'A flash would send')
    return '%s %s' % (begin, '; '.join(listed) or 'no image')


def faults(record):
    """What is wrong, the worst first."""
    if record['differing']:
        yield 'not as on the control machine: ' + record['differing']
    if record['status'] not in JUDGED | {0}:
        yield record['answer']
    if record['flash'] == 'failed':
        yield 'the flash has failed: ' + record['answer']
    for controller in record['controllers']:
        for port in controller['ports']:
            if port['verdict'] == 'not allowed':
                yield '%s %s: %s is not allowed by line %s' % (
                    controller['serial'], port['port'], port['storage'], port['line'])
    for severity in SEVERITIES[:2]:
        for each in record['findings']:
            if each['severity'] == severity and not each['accepted']:
                place = ' ' + each['place'] if each['place'] else ''
                yield each['code'] + place + ': ' + each['what'].rstrip('.')
    if record['status'] != 0:
        yield record['answer']


def headline(record):
    """One line: the worst fault with its place; where there is none, what was looked at or sent."""
    for fault in faults(record):
        return fault
    if record['job'] == 'flash' and not record['flash']:
        return 'not flashed'
    if record['job'] == 'flash' or record['downloads']:
        return record['images']
    ports = [port for each in record['controllers'] for port in each['ports']]
    return 'controllers: %d, ports checked: %d' % (
        len(record['controllers']), sum(port['verdict'] != 'not checked' for port in ports))


def state(record, accepted, refusals):
    if record['differing']:
        return 'CRITICAL'
    if record['status'] is None:
        return 'UNKNOWN'
    if record['status'] not in accepted:
        return 'CRITICAL' if record['status'] in JUDGED else 'UNKNOWN'
    if refusals:
        return 'UNKNOWN' if set(refusals) <= OWN_CODES else 'CRITICAL'
    if record['job'] == 'flash' and not record['flash']:
        return 'UNKNOWN'
    counts = any(each['severity'] != 'note' and not each['accepted'] for each in record['findings'])
    return 'WARNING' if counts else 'OK'


def record(parts, outcome, audited, accepted, refused):
    """All that is known of a server. `parts`: server, job, directory, flash, differing."""
    known = {'server': parts['server'], 'state': '', 'status': None, 'name': '', 'headline': '',
             'answer': 'no answer', 'commands': 0, 'audit': 'none', 'controllers': [], 'findings': [],
             'downloads': []}
    known.update(outcome)
    known.update(audited)
    known.update(parts)
    known['refused'] = refused_codes(known['findings'], refused)
    known['passed'] = (known['status'] == 0 and known['audit'] != 'none'
                       and not known['differing'] and not known['refused'])
    known['state'] = state(known, accepted, known['refused'])
    known['images'] = images_told(known)
    known['headline'] = headline(known)
    return known


def fleet(hosts, hostvars, job, time, dry):
    """The records of all hosts of a play, the bad ones first, and how many there are of a state."""
    servers = []
    for host in hosts:
        noted = hostvars[host].get('cnatool_record')
        if not noted or noted['job'] != job:
            noted = record({'server': host, 'job': job, 'directory': '', 'flash': '', 'differing': ''},
                           {'answer': NOT_BEGUN}, {}, [], [])
        servers.append(noted)
    servers.sort(key=lambda each: STATES.index(each['state']))
    counts = {name: sum(each['state'] == name for each in servers) for name in STATES}
    return {'format': 1, 'job': job, 'time': time, 'simulated': dry, 'counts': counts,
            'servers': servers}


def told(known):
    """The answer, and the headline if that says more."""
    return ': '.join(dict.fromkeys((known['answer'], known['headline'])))


def due(hosts, hostvars, dry):
    """Those whose flash has not begun: in a dry run all."""
    return [host for host in hosts if dry or not hostvars[host].get('cnatool_begun')]


def lines(known):
    """How many servers there are of a state, and each that is not as it should be."""
    counts = ['%s: %d' % pair for pair in known['counts'].items() if pair[1]]
    return [', '.join(counts)] + [
        '%s: %s, %s' % (each['server'], each['state'], told(each)) for each in known['servers']
        if each['state'] != 'OK' and each['answer'] != NOT_BEGUN]


def escaped(value):
    """The same with every text as HTML takes it, so that a page needs no further thought."""
    if isinstance(value, dict):
        return {key: escaped(each) for key, each in value.items()}
    if isinstance(value, list):
        return [escaped(each) for each in value]
    return html.escape(value) if isinstance(value, str) else value


def csv_cells(values):
    """A line of quoted cells, none of which a spreadsheet takes for a formula."""
    cells = []
    for value in values:
        text = ' '.join(as_text(value).split())
        cells.append('"%s%s"' % ("'" * bool(re.match(FORMULA, text)), text.replace('"', '""')))
    return ','.join(cells)


def own_outputs(paths, directory):
    """Of the paths that a server names, relative to `directory`, those of output files in it: they
    become paths on the control machine, and words of a command of the file transfer."""
    below = [path[len(directory) + 1:] for path in map(as_text, paths)
             if path.startswith(directory + '/')]
    return sorted({path for path in below if posixpath.normpath(path) == path and path.isprintable()
                   and not path.startswith(('/', '..'))
                   and OUTPUT_NAMES.fullmatch(posixpath.basename(path))})


class FilterModule:
    def filters(self):
        return {'cnatool_run_text': run_text, 'cnatool_outcome': outcome, 'cnatool_audited': audited,
                'cnatool_codes': codes, 'cnatool_record': record, 'cnatool_fleet': fleet,
                'cnatool_lines': lines, 'cnatool_told': told, 'cnatool_due': due,
                'cnatool_escaped': escaped, 'cnatool_csv': csv_cells, 'cnatool_outputs': own_outputs}
