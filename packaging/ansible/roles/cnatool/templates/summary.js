// Shows the servers whose text holds all the words, of those of the chosen state, for which the
// style sheet sees. Without this script the whole table stands there.
const form = document.forms[0];
const rows = [...document.querySelectorAll('#servers > tbody > tr')];
const texts = rows.map(row => row.textContent.toLowerCase());

function show() {
    const words = form.text.value.toLowerCase().split(' ');
    rows.forEach((row, i) => { row.hidden = !words.every(word => texts[i].includes(word)); });
    const shown = rows.filter(row => row.checkVisibility()).length;
    form.querySelector('output').value = `${shown} of ${rows.length} servers shown`;
}

form.querySelectorAll('[hidden]').forEach(each => { each.hidden = false; });
form.addEventListener('input', show);
form.addEventListener('submit', event => event.preventDefault());
show();
