// A slider over the range that the effect suggests, beside a field that takes the whole valid range.
import { html } from 'lit';
import { customElement } from 'lit/decorators.js';
import { place } from '../app/place';
import { shared } from '../app/theme';
import { clamped } from '../model/number';
import { besideFieldStyle } from './beside-field-style';
import { Control } from './control';
import './number-field';
import type { NumberField } from './number-field';
import { rangeStyle } from './range-style';

@customElement('slider-control')
export class SliderControl extends Control {
  static override styles = [shared, rangeStyle, besideFieldStyle];

  protected override render() {
    const { name, minimum = 0, maximum = 100, unit = '', enabled, hint } = this.parameter;
    const least = this.parameter.sliderMinimum ?? minimum;
    const most = this.parameter.sliderMaximum ?? maximum;
    const share = most > least ? (clamped(this.number, least, most) - least) / (most - least) : 0;
    return html`<input
        type="range"
        aria-label=${name}
        aria-description=${hint ?? ''}
        min=${least}
        max=${most}
        step=${10 ** -this.precision}
        ?disabled=${!enabled}
        .value=${String(this.number)}
        ${place({ '--share': String(share) })}
        @input=${(event: Event) => this.move(numberOf(event))}
        @change=${(event: Event) => this.settle(numberOf(event))}
      />
      <number-field
        name=${name}
        unit=${unit}
        .value=${this.number}
        .minimum=${minimum}
        .maximum=${maximum}
        .precision=${this.precision}
        ?disabled=${!enabled}
        @value=${(event: Event) => this.settle((event.target as NumberField).value)}
      ></number-field>`;
  }
}

function numberOf(event: Event): number {
  return Number((event.target as HTMLInputElement).value);
}
