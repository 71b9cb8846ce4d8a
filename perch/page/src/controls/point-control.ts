// The numbers of a point; it can also be dragged on the picture.
import { css, html } from 'lit';
import { customElement } from 'lit/decorators.js';
import { shared } from '../app/theme';
import { Control } from './control';
import './number-field';
import type { NumberField } from './number-field';

const axes = ['X', 'Y', 'Z'];

@customElement('point-control')
export class PointControl extends Control {
  static override styles = [
    shared,
    css`
      div {
        display: flex;
        gap: var(--gap);
      }
      number-field {
        flex: 1;
      }
    `,
  ];

  protected override render() {
    const { name, enabled } = this.parameter;
    const numbers = Array.isArray(this.value) ? (this.value as readonly number[]) : [];
    return html`<div role="group" aria-label=${name}>
      ${numbers.map(
        (number, i) =>
          html`<number-field
            name="${name} ${axes[i] ?? i}"
            .value=${number}
            .precision=${1}
            ?disabled=${!enabled}
            @value=${(event: Event) =>
              this.settle(numbers.map((other, j) => (i === j ? (event.target as NumberField).value : other)))}
          ></number-field>`,
      )}
    </div>`;
  }
}
