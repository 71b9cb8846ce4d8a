import { css, html } from 'lit';
import { customElement } from 'lit/decorators.js';
import { shared } from '../app/theme';
import { Control } from './control';

@customElement('check-control')
export class CheckControl extends Control {
  static override styles = [
    shared,
    css`
      input {
        width: 14px;
        height: 14px;
        margin: 0;
        accent-color: var(--accent);
        vertical-align: middle;
      }
    `,
  ];

  protected override render() {
    const { name, label, enabled, hint } = this.parameter;
    return html`<label>
      <input
        type="checkbox"
        aria-label=${name}
        aria-description=${hint ?? ''}
        ?disabled=${!enabled}
        .checked=${this.value === true}
        @change=${(event: Event) => this.settle((event.target as HTMLInputElement).checked)}
      />
      <span class="dim">${label ?? ''}</span>
    </label>`;
  }
}
