// Says what is missing among the report form's criteria before they are sent, in the words that the
// portal would use.
'use strict';

document.addEventListener('DOMContentLoaded', () => {
    const form = document.getElementById('searchForm');
    if (!form) return;
    const isEmpty = (field) => field.value.trim() === '';
    const named = (name) => form.elements.namedItem(name);

    const takeBack = (field) => {
        field.classList.remove('invalid');
        field.removeAttribute('aria-invalid');
        document.getElementById(`${field.name}_error`)?.remove();
    };
    const complain = (field, text) => {
        takeBack(field);
        const message = document.createElement('span');
        message.id = `${field.name}_error`;
        message.className = 'fieldError';
        message.role = 'alert';
        message.textContent = text;
        field.closest('.formField').append(message);
        field.classList.add('invalid');
        field.setAttribute('aria-invalid', 'true');
        field.setAttribute('aria-describedby', message.id);
    };

    const entity = 'mandatoryEntity' in form.dataset ? named('suggest1') : null;
    const contacts = 'mandatoryContact' in form.dataset ? [...form.querySelectorAll('[name^=contact]')] : [];
    const [start, end] = [named('startDate'), named('endDate')];

    // Each answers the field that something is wrong with.
    const checks = [
        () => {
            if (!start || !end || isEmpty(start) || isEmpty(end) || end.value >= start.value.slice(0, 10)) return null;
            complain(end, 'The end date lies before the start date.');
            return end;
        },
        () => {
            if (!entity || !isEmpty(entity) || named('globcb1')?.checked) return null;
            complain(entity, 'This field is mandatory');
            return entity;
        },
        () => {
            if (contacts.length === 0 || !contacts.every(isEmpty)) return null;
            if (named('searchtype')?.value === 'contact' && !isEmpty(named('suggest1'))) return null;
            complain(contacts[0], 'You must specify at least one contact for this report.');
            return contacts[0];
        },
    ];

    form.addEventListener('submit', (event) => {
        if (event.submitter?.formNoValidate) return;
        const wrong = checks.map((check) => check()).filter((field) => field !== null);
        if (wrong.length === 0) return;
        event.preventDefault();
        wrong[0].focus();
    });
    form.addEventListener('input', ({ target }) => {
        if (contacts.includes(target)) takeBack(contacts[0]);
        else if (target.name === 'globcb1' && entity) takeBack(entity);
        else if (target.classList.contains('invalid')) takeBack(target);
    });
});
