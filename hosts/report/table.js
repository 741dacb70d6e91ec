// Choosing a row shows its pictures, and tells the 3D view.
'use strict';
(() => {
    const rows = [...document.querySelectorAll('tr[data-row]')];
    const pictures = [...document.querySelectorAll('[data-picture]')];
    const status = document.getElementById('shown');

    function show(number) {
        for (const row of rows) {
            const isShown = row.dataset.row === number;
            row.classList.toggle('shown', isShown);
            const button = row.querySelector('button');
            if (button) button.setAttribute('aria-pressed', String(isShown));
        }
        const hasPicture = pictures.some(picture => picture.dataset.picture === number);
        if (hasPicture)
            for (const picture of pictures) picture.hidden = picture.dataset.picture !== number;
        const shown = rows.find(row => row.dataset.row === number);
        status.textContent = shown ? 'Shown: ' + shown.dataset.name + '.' : '';
        document.dispatchEvent(new CustomEvent('show', {detail: Number(number)}));
    }

    for (const row of rows) {
        const button = row.querySelector('button');
        if (button) row.addEventListener('click', () => show(row.dataset.row));
    }
    const first = rows.find(row => row.querySelector('button'));
    if (first) show(first.dataset.row);
})();
