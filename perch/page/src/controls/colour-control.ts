import { css, html } from 'lit';
import { customElement } from 'lit/decorators.js';
import { shared } from '../app/theme';
import { colourText, coloursOf } from '../model/colour';
import { Control } from './control';

@customElement('colour-control')
export class ColourControl extends Control {
  static override styles = [
    shared,
    css`
      :host {
        display: flex;
        gap: var(--gap);
      }
      input[type='color'] {
        width: 44px;
        height: 22px;
        padding: 1px;
        border: 1px solid var(--line);
        border-radius: 3px;
        background: var(--well);
      }
      input[type='text'] {
        width: 110px;
      }
    `,
  ];

  protected override render() {
    const { name, enabled, hint } = this.parameter;
    const text = String(this.value ?? '#000000');
    const colour = colourText((coloursOf(text) ?? [0, 0, 0]).slice(0, 3));
    return html`<input
        type="color"
        aria-label=${name}
        aria-description=${hint ?? ''}
        ?disabled=${!enabled}
        .value=${colour}
        @input=${(event: Event) => this.move(this.withAlpha((event.target as HTMLInputElement).value))}
        @change=${(event: Event) => this.settle(this.withAlpha((event.target as HTMLInputElement).value))}
      />
      <input type="text" aria-label="${name} as text" ?disabled=${!enabled} .value=${text} @change=${this.type} />`;
  }

  // The native chooser knows no alpha; that of the value stays.
  private withAlpha(hex: string): string {
    const alpha = coloursOf(String(this.value ?? ''))?.[3];
    return alpha === undefined ? hex : colourText([...(coloursOf(hex) ?? []), alpha]);
  }

  private type(event: Event): void {
    const field = event.target as HTMLInputElement;
    const colour = coloursOf(field.value.trim());
    if (colour) this.settle(colourText(colour));
    else field.value = String(this.value ?? '');
  }
}
